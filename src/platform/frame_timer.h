#pragma once

#include "platform/loop_wait.h"

#include <QSocketNotifier>

#include <functional>

namespace vantrel {

// Calls its target at an even rate, finer than whole milliseconds. Calls that were missed are made
// up for by one. The target must not run an event loop, nor end the timer.
class FrameTimer {
public:
    // In calls for each second, above zero.
    FrameTimer(double rate, std::function<void()> target);
    ~FrameTimer();
    FrameTimer(const FrameTimer&) = delete;
    FrameTimer& operator=(const FrameTimer&) = delete;

private:
    void call() const;

    int descriptor_;
    std::function<void()> target_;
    QSocketNotifier notifier_;
    LoopWait wait_;
};

} // namespace vantrel
