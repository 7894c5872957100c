#pragma once

#include "platform/x11/connection.h"

#include <QObject>
#include <QSocketNotifier>

#include <chrono>

namespace vantrel::x11 {

// Makes the connection one more descriptor of Qt's event loop.
class EventLoop final : public QObject {
public:
    // An event dispatcher must exist, as it does once the application object does.
    explicit EventLoop(Connection& connection);

private:
    using Clock = std::chrono::steady_clock;

    void dispatch();

    Connection& connection_;
    QSocketNotifier notifier_;
    Clock::time_point last_; // when something was dispatched
};

} // namespace vantrel::x11
