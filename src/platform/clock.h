#pragma once

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

} // namespace vantrel
