#pragma once

#include "platform/x11/connection.h"

#include <QObject>
#include <QSocketNotifier>

#include <chrono>

#include <glib.h>

namespace vantrel::x11 {

// Makes the connection one more descriptor of Qt's event loop. A turn of that costs as much as
// following a motion, so frames and motions are handled while it waits, as far as it is GLib's
// loop.
class EventLoop final : public QObject {
public:
    // An event dispatcher must exist, as it does once the application object does.
    explicit EventLoop(Connection& connection);
    ~EventLoop() override;
    EventLoop(const EventLoop&) = delete;
    EventLoop& operator=(const EventLoop&) = delete;

private:
    using Clock = std::chrono::steady_clock;

    void dispatch();
    int wait(GPollFD* descriptors, unsigned count, int timeout);
    [[nodiscard]] bool isAlone(GPollFD* descriptors, unsigned count) const;

    Connection& connection_;
    QSocketNotifier notifier_;
};

} // namespace vantrel::x11
