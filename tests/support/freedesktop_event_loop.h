#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

namespace vantrel {

// Runs the event loop until the condition holds; false when that takes ten seconds.
template <typename Condition>
bool waitUntil(Condition condition) {
    const QDeadlineTimer deadline(10'000);
    QTimer heartbeat; // for conditions that no event brings about
    heartbeat.start(5);
    while (!condition()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

} // namespace vantrel
