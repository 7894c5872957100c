#include "platform/x11/event_loop.h"

#include <QAbstractEventDispatcher>

#include <poll.h>

namespace vantrel::x11 {

namespace {

// A turn of the toolkit's loop costs as much as following a motion. So while the server has
// something to say about every millisecond, as with a fast mouse, the next is awaited outside of
// it. Nothing else of the program waits for that longer than a turn may take.
constexpr std::chrono::milliseconds longestTurn(4);
constexpr std::chrono::milliseconds shortPause(2);

bool isReadableWithin(std::chrono::milliseconds limit, int descriptor) {
    pollfd readable{descriptor, POLLIN, 0};
    return poll(&readable, 1, static_cast<int>(limit.count())) > 0;
}

} // namespace

EventLoop::EventLoop(Connection& connection)
    : connection_(connection), notifier_(connection.descriptor(), QSocketNotifier::Read) {
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
    const auto start = Clock::now();
    const bool isStream = start - last_ < shortPause;
    do {
        connection_.dispatch();
        last_ = Clock::now();
    } while (isStream && last_ - start < longestTurn && !connection_.isLost() &&
             !connection_.hasQueuedEvents() &&
             isReadableWithin(shortPause, connection_.descriptor()));
    if (connection_.isLost()) {
        notifier_.setEnabled(false);
    }
}

} // namespace vantrel::x11
