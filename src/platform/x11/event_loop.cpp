#include "platform/x11/event_loop.h"

#include <QAbstractEventDispatcher>

namespace vantrel::x11 {

EventLoop::EventLoop(Connection& connection)
    : connection_(connection),
      notifier_(connection.descriptor(), QSocketNotifier::Read),
      wait_(connection.descriptor(), [this] { return dispatchFrames(); }) {
    connect(&notifier_, &QSocketNotifier::activated, this, &EventLoop::dispatch);
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

void EventLoop::dispatch() {
    connection_.dispatch();
    if (connection_.isLost()) {
        notifier_.setEnabled(false);
    }
}

bool EventLoop::dispatchFrames() {
    const bool all = connection_.dispatchFrames();
    if (all) {
        connection_.beginTurn();
    }
    return all;
}

} // namespace vantrel::x11
