#include "platform/x11/compositing.h"

#include "platform/x11/selection.h"

#include <chrono>

#include <xcb/composite.h>

namespace vantrel::x11 {

namespace {

constexpr std::chrono::milliseconds probingInterval(10);

} // namespace

Compositing::Compositing(Connection& connection)
    : connection_(connection), events_(connection.addHandler(*this)) {
    QObject::connect(&probing_, &QTimer::timeout, &probing_, [this] { probe(); });
    auto* xcb = connection_.xcb();
    owned_ = watchSelection(connection_, connection_.atom(Atom::compositingManager));
    if (connection_.majorOpcode(xcb_composite_id) != 0) {
        xcb_discard_reply(xcb, xcb_composite_query_version(xcb, 0, 2).sequence);
    }
    probe();
}

void Compositing::handleEvent(const xcb_generic_event_t& event) {
    if (const auto owned =
            ownedAfter(connection_, event, connection_.atom(Atom::compositingManager))) {
        owned_ = *owned;
        ownerChanged_ = true;
    }
}

void Compositing::eventsDrained() {
    if (std::exchange(ownerChanged_, false)) {
        probe();
    }
}

void Compositing::probe() {
    const bool active = owned_ && takesWindowsOver();
    if (active || !owned_) {
        probing_.stop();
    } else {
        probing_.start(probingInterval);
    }
    setActive(active);
}

// Only a window that was taken over has a pixmap to name.
bool Compositing::takesWindowsOver() {
    if (connection_.majorOpcode(xcb_composite_id) == 0) {
        return false;
    }
    auto* xcb = connection_.xcb();
    const WindowHandle window(xcb);
    const std::uint32_t overrideRedirect = 1;
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, window.id(), connection_.root(), -10, -10, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                      &overrideRedirect);
    xcb_map_window(xcb, window.id());
    const auto pixmap = xcb_generate_id(xcb);
    const Owned<xcb_generic_error_t> error(
        xcb_request_check(xcb, xcb_composite_name_window_pixmap_checked(xcb, window.id(), pixmap)));
    if (error) {
        return false;
    }
    xcb_free_pixmap(xcb, pixmap);
    return xcb_connection_has_error(xcb) == 0;
}

void Compositing::setActive(bool active) {
    if (std::exchange(active_, active) != active) {
        changed.notify();
    }
}

} // namespace vantrel::x11
