#include "platform/x11/compositing.h"

#include <xcb/xfixes.h>

namespace vantrel::x11 {

Compositing::Compositing(Connection& connection)
    : connection_(connection), events_(connection.addHandler(*this)) {
    auto* xcb = connection_.xcb();
    const auto selection = connection_.atom(Atom::compositingManager);
    xcb_xfixes_select_selection_input(xcb, connection_.root(), selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    const Owned<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(xcb, xcb_get_selection_owner(xcb, selection), nullptr));
    active_ = owner && owner->owner != XCB_NONE;
    reported_ = active_;
}

void Compositing::handleEvent(const xcb_generic_event_t& event) {
    if (eventNumber(event) != connection_.firstEvent(xcb_xfixes_id) + XCB_XFIXES_SELECTION_NOTIFY) {
        return;
    }
    const auto& notify = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
    if (notify.selection == connection_.atom(Atom::compositingManager)) {
        active_ = notify.owner != XCB_NONE;
    }
}

void Compositing::eventsDrained() {
    if (std::exchange(reported_, active_) != active_) {
        changed.notify();
    }
}

} // namespace vantrel::x11
