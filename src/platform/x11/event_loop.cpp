#include "platform/x11/event_loop.h"

#include <QAbstractEventDispatcher>

#include <algorithm>
#include <span>

namespace vantrel::x11 {

namespace {

// What is begun meanwhile, such as a timer, comes into effect with the next turn of Qt's loop,
// which is no later than after that.
constexpr std::chrono::milliseconds longestStay(500);

// That which waits in place of the loop; there is one loop.
EventLoop* waiting = nullptr;
GPollFunc formerWait = nullptr;

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
    if (waiting == nullptr && dispatcher->inherits("QEventDispatcherGlib")) {
        waiting = this;
        formerWait = g_main_context_get_poll_func(nullptr);
        g_main_context_set_poll_func(nullptr, [](GPollFD* descriptors, guint count, int timeout) {
            return waiting->wait(descriptors, count, timeout);
        });
    }
}

EventLoop::~EventLoop() {
    if (waiting == this) {
        g_main_context_set_poll_func(nullptr, formerWait);
        waiting = nullptr;
    }
}

void EventLoop::dispatch() {
    connection_.dispatch();
    if (connection_.isLost()) {
        notifier_.setEnabled(false);
    }
}

// In place of the loop's poll().
int EventLoop::wait(GPollFD* descriptors, unsigned count, int timeout) {
    using std::chrono::milliseconds;
    const auto start = Clock::now();
    const auto longest = timeout < 0 ? longestStay : std::min(longestStay, milliseconds(timeout));
    int left = timeout;
    while (true) {
        const int ready = formerWait(descriptors, count, left);
        if (ready != 1 || !isAlone(descriptors, count) || !connection_.dispatchFrames()) {
            return ready;
        }
        connection_.beginTurn();
        const auto passed = std::chrono::duration_cast<milliseconds>(Clock::now() - start);
        left = static_cast<int>((longest - passed).count());
        if (left <= 0) {
            return ready;
        }
    }
}

// Whether of the descriptors that of the connection has something to say.
bool EventLoop::isAlone(GPollFD* descriptors, unsigned count) const {
    const std::span all(descriptors, count);
    const auto own = std::ranges::find(all, connection_.descriptor(), &GPollFD::fd);
    return own != all.end() && own->revents == G_IO_IN;
}

} // namespace vantrel::x11
