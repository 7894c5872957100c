#pragma once

#include "platform/x11/connection.h"

namespace vantrel::x11 {

// Asks the window manager to bring a window that it knows to the workspace that is shown and to the
// front, and to give it the keyboard, as a panel does for its user. What a program asks for by
// itself it may refuse as an intrusion.
void activateWindow(Connection& connection, xcb_window_t window);

} // namespace vantrel::x11
