#pragma once

#include "platform/loop_wait.h"
#include "platform/wayland/connection.h"

#include <QObject>
#include <QSocketNotifier>

namespace vantrel::wayland {

// Makes the connection one more descriptor of Qt's event loop. Frames and motions are handled while
// that waits.
class EventLoop final : public QObject {
public:
    // An event dispatcher must exist, as it does once the application object does.
    explicit EventLoop(Connection& connection);

private:
    QSocketNotifier notifier_;
    LoopWait wait_;
    Subscription loss_;
};

} // namespace vantrel::wayland
