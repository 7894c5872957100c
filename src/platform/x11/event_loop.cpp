#include "platform/x11/event_loop.h"

#include <QAbstractEventDispatcher>

namespace vantrel::x11 {

EventLoop::EventLoop(Connection& connection)
    : connection_(connection), notifier_(connection.descriptor(), QSocketNotifier::Read) {
    connect(&notifier_, &QSocketNotifier::activated, this, [this] {
        connection_.dispatch();
        if (xcb_connection_has_error(connection_.xcb()) != 0) {
            notifier_.setEnabled(false);
        }
    });
    // A reply that somebody waited for may have brought events along, and then the descriptor is
    // silent about them.
    auto* dispatcher = QAbstractEventDispatcher::instance();
    connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, [this, dispatcher] {
        if (connection_.hasQueuedEvents()) {
            connection_.dispatch();
        }
        xcb_flush(connection_.xcb());
        if (connection_.hasQueuedEvents()) {
            dispatcher->wakeUp();
        }
        connection_.beginTurn();
    });
}

} // namespace vantrel::x11
