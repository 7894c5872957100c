#pragma once

#include "platform/wayland/connection.h"

#include <QObject>
#include <QSocketNotifier>

namespace vantrel::wayland {

// Makes the connection one more descriptor of Qt's event loop.
class EventLoop final : public QObject {
public:
    // An event dispatcher must exist, as it does once the application object does.
    explicit EventLoop(Connection& connection);

private:
    QSocketNotifier notifier_;
    Subscription loss_;
};

} // namespace vantrel::wayland
