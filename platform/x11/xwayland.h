#pragma once

#include <QPoint>

#include <xcb/xcb.h>

// Xwayland is an X server that shows its windows through a Wayland compositor, and hears of the
// pointer only while that is over one of them.

namespace vantrel::x11 {

// Whether the server is one. Those that draw their whole screen into a window of the session, such
// as Xephyr, are none. RandR must have been agreed upon.
[[nodiscard]] bool isXwayland(xcb_connection_t* connection, xcb_window_t root);

// Tells what Xwayland's word about the pointer is worth. Elsewhere than over its windows, it goes
// on naming the place where the pointer left them.
class XwaylandPointer {
public:
    // Whether an answer tells where the pointer is. Wants to see each, in their order.
    [[nodiscard]] bool tells(const xcb_query_pointer_reply_t& answer);

private:
    QPoint lastInside_;
};

} // namespace vantrel::x11
