#pragma once

#include "platform/subscription.h"

#include <functional>

// Time, and what happens in it.

namespace vantrel {

// Time in seconds that never jumps back.
class Clock {
public:
    virtual ~Clock() = default;

    // Since the machine started, without the time that it slept.
    [[nodiscard]] virtual double uptime() const = 0;
    // The time base of layer animations; only differences mean something.
    [[nodiscard]] virtual double mediaTime() const = 0;
};

// Calls on the main thread, from its event loop.
class MainQueue {
public:
    virtual ~MainQueue() = default;

    virtual void async(std::function<void()> call) = 0;
    // After the given seconds, never before, unless the subscription ends first. The clock that
    // counts them goes on while the machine sleeps.
    [[nodiscard]] virtual Subscription after(double seconds, std::function<void()> call) = 0;
};

} // namespace vantrel
