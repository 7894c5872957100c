#pragma once

#include "ui/components/view_context.h"

#include <QMargins>

#include <string_view>

// What is to be said in a Wayland session in which the desktop does not draw the marks, or in which
// the compositor does not tell where the pointer is.

namespace vantrel {

// In the user defaults: true once the notice about Wayland sessions was dismissed, and that about
// marks that the desktop could draw.
inline constexpr std::string_view waylandNoticeDismissedKey = "waylandNoticeDismissed";
inline constexpr std::string_view marksNoticeDismissedKey = "marksNoticeDismissed";

// Whether there is something to say that was not dismissed.
[[nodiscard]] bool hasWaylandNotice(const ViewContext& view);

// That, and what can be done about it, until it is dismissed. Null where it never will be shown.
[[nodiscard]] QWidget* waylandNotice(ViewContext& view, const QMargins& around);
// The same where it is about what the user can do or await, for as long as it is so.
[[nodiscard]] QWidget* marksNotice(ViewContext& view, const QMargins& around);

} // namespace vantrel
