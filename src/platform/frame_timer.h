#pragma once

#include <QSocketNotifier>

#include <functional>

namespace vantrel {

// Calls its target at an even rate, finer than whole milliseconds. Calls that were missed are made
// up for by one.
class FrameTimer {
public:
    // In calls for each second, above zero.
    FrameTimer(double rate, std::function<void()> target);
    ~FrameTimer();
    FrameTimer(const FrameTimer&) = delete;
    FrameTimer& operator=(const FrameTimer&) = delete;

private:
    int descriptor_;
    QSocketNotifier notifier_;
};

} // namespace vantrel
