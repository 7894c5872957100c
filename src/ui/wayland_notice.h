#pragma once

#include "ui/components/view_context.h"

#include <QMargins>

#include <string_view>

// What is to be said in a Wayland session in which the desktop does not draw the marks.

namespace vantrel {

// In the user defaults: true once the notice about Wayland sessions was dismissed, and that about
// marks that the desktop could draw.
inline constexpr std::string_view waylandNoticeDismissedKey = "waylandNoticeDismissed";
inline constexpr std::string_view marksNoticeDismissedKey = "marksNoticeDismissed";

// Whether there is something to say that was not dismissed.
[[nodiscard]] bool hasWaylandNotice(const ViewContext& view);

// That, and what can be done about it. Shown only while it is so; null where it never will be.
[[nodiscard]] QWidget* waylandNotice(ViewContext& view, const QMargins& around);
// The same where it is about what the user can do or await.
[[nodiscard]] QWidget* marksNotice(ViewContext& view, const QMargins& around);

} // namespace vantrel
