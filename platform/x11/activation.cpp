#include "platform/x11/activation.h"

namespace vantrel::x11 {

void activateWindow(Connection& connection, xcb_window_t window) {
    constexpr std::uint32_t fromPager = 2;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = connection.atom(Atom::activeWindow);
    message.data.data32[0] = fromPager;
    xcb_send_event(connection.xcb(), 0, connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(connection.xcb());
}

} // namespace vantrel::x11
