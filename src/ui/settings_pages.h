#pragma once

#include "ui/components/view_context.h"

#include <functional>

// What the tabs of the settings window show.

namespace vantrel {

[[nodiscard]] QWidget* appearancePage(ViewContext& view);
[[nodiscard]] QWidget* effectsPage(ViewContext& view);
[[nodiscard]] QWidget* controlsPage(ViewContext& view);
// Calls when all preferences are to be reset, once that is confirmed.
[[nodiscard]] QWidget* generalPage(ViewContext& view, const std::function<void()>& reset);
[[nodiscard]] QWidget* aboutPage(ViewContext& view);

// That clicks cannot be seen, and the way to try again. Shown only while it is so.
[[nodiscard]] QWidget* clickMonitorNotice(ViewContext& view);
// Whether that is for good.
[[nodiscard]] bool compositorHidesPresses(const ViewContext& view);

} // namespace vantrel
