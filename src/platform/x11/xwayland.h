#pragma once

#include "platform/x11/connection.h"

#include <QPoint>

// Xwayland is an X server that shows its windows through a Wayland compositor, and hears of the
// pointer only while that is over one of them.

namespace vantrel::x11 {

// Whether the server is one. Those that draw their whole screen into a window of the session, such
// as Xephyr, are none. RandR must have been agreed upon.
[[nodiscard]] bool isXwayland(xcb_connection_t* connection, xcb_window_t root);

// What Xwayland says about the pointer.
struct PointerSample {
    QPoint place;
    bool inside = false;  // over a window that shows something
    bool held = false;    // with a button down
    bool focused = false; // while an X program has the keyboard

    bool operator==(const PointerSample&) const = default;
};

// Tells samples that say where the pointer is from stale ones. Elsewhere than over its windows,
// Xwayland goes on naming the place where the pointer left them.
class StalePointerFilter {
public:
    // For how long the pointer is believed to rest where it is said to be, in seconds.
    static constexpr double restTimeout = 3;

    // Whether it tells where the pointer is. Wants to hear each, in their order, with the uptime.
    [[nodiscard]] bool accepts(const PointerSample& sample, double now);

private:
    QPoint lastInside_;
    PointerSample last_;
    double changed_ = 0;
};

// Looks at the answers to queries of the pointer.
class XwaylandPointer final : private EventHandler {
public:
    explicit XwaylandPointer(Connection& connection);

    // Whether this one, the newest, tells where the pointer is.
    [[nodiscard]] bool isKnown(const xcb_query_pointer_reply_t& answer, double now);

private:
    void handleEvent(const xcb_generic_event_t& event) override;
    bool isInside(xcb_window_t window);
    bool isFocused();

    Connection& connection_;
    StalePointerFilter filter_;
    xcb_window_t window_ = XCB_NONE;
    bool inside_ = false; // of that window, which shows something
    bool focused_ = false;
    bool focusIsStale_ = true;
    Subscription events_;
};

} // namespace vantrel::x11
