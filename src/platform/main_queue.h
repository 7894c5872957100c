#pragma once

#include "platform/subscription.h"

#include <functional>

namespace vantrel {

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
