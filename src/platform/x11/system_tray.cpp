#include "platform/x11/system_tray.h"

#include "platform/x11/selection.h"

namespace vantrel::x11 {

X11SystemTray::X11SystemTray(Connection& connection)
    : connection_(connection),
      present_(watchSelection(connection, connection.atom(Atom::systemTray))),
      events_(connection.addHandler(*this)) {}

void X11SystemTray::handleEvent(const xcb_generic_event_t& event) {
    if (const auto present = ownedAfter(connection_, event, connection_.atom(Atom::systemTray))) {
        present_ = *present;
        changes_.notify();
    }
}

} // namespace vantrel::x11
