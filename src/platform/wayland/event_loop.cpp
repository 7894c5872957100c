#include "platform/wayland/event_loop.h"

#include <QAbstractEventDispatcher>

namespace vantrel::wayland {

EventLoop::EventLoop(Connection& connection)
    : notifier_(connection.descriptor(), QSocketNotifier::Read),
      wait_(connection.descriptor(), [&connection] { return connection.dispatchFrames(); }),
      loss_(connection.lost.add([this] { notifier_.setEnabled(false); })) {
    connect(&notifier_, &QSocketNotifier::activated, this,
            [&connection] { connection.dispatch(); });
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            [&connection] { connection.hasRead() ? connection.dispatch() : connection.flush(); });
}

} // namespace vantrel::wayland
