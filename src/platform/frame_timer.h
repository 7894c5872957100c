#pragma once

#include <QSocketNotifier>

#include <chrono>
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

    // Has the next call come one and a half times as late from now as it would after another.
    void putOff() const;

private:
    using Nanoseconds = std::chrono::duration<long, std::nano>;

    void start(Nanoseconds first) const;

    Nanoseconds period_;
    int descriptor_;
    QSocketNotifier notifier_;
};

} // namespace vantrel
