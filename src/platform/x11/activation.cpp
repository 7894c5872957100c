#include "platform/x11/activation.h"

#include "platform/x11/property.h"

namespace vantrel::x11 {

namespace {

constexpr std::uint32_t fromPager = 2;
constexpr std::uint32_t allWorkspaces = 0xFFFFFFFF;

void tellWindowManager(const Connection& connection, xcb_window_t window, Atom what,
                       std::uint32_t first, std::uint32_t second) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = connection.atom(what);
    message.data.data32[0] = first;
    message.data.data32[1] = second;
    xcb_send_event(connection.xcb(), 0, connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
}

} // namespace

void activateWindow(Connection& connection, xcb_window_t window) {
    const auto shown = numberOf(connection, connection.root(), Atom::currentDesktop);
    const auto own = numberOf(connection, window, Atom::windowDesktop);
    if (shown && own && own != shown && own != allWorkspaces) {
        tellWindowManager(connection, window, Atom::windowDesktop, *shown, fromPager);
    }
    tellWindowManager(connection, window, Atom::activeWindow, fromPager, XCB_CURRENT_TIME);
    xcb_flush(connection.xcb());
}

} // namespace vantrel::x11
