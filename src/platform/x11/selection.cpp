#include "platform/x11/selection.h"

#include <xcb/xfixes.h>

namespace vantrel::x11 {

bool watchSelection(Connection& connection, xcb_atom_t selection) {
    xcb_xfixes_select_selection_input(connection.xcb(), connection.root(), selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    return selectionOwner(connection, selection) != XCB_NONE;
}

std::optional<bool> ownedAfter(const Connection& connection, const xcb_generic_event_t& event,
                               xcb_atom_t selection) {
    if (eventNumber(event) != connection.firstEvent(xcb_xfixes_id) + XCB_XFIXES_SELECTION_NOTIFY) {
        return std::nullopt;
    }
    const auto& notify = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
    return notify.selection == selection ? std::optional(notify.owner != XCB_NONE) : std::nullopt;
}

xcb_window_t selectionOwner(const Connection& connection, xcb_atom_t selection) {
    auto* xcb = connection.xcb();
    const Owned<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(xcb, xcb_get_selection_owner(xcb, selection), nullptr));
    return owner ? owner->owner : xcb_window_t{XCB_NONE};
}

} // namespace vantrel::x11
