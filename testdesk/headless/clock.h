#pragma once

#include "platform/time.h"

namespace vantrel::headless {

class Clock final : public vantrel::Clock {
public:
    [[nodiscard]] double uptime() const override { return now_; }
    // Another time base than uptime, as on a real desktop.
    [[nodiscard]] double mediaTime() const override { return now_ + 1000; }
    void advance(double seconds) { now_ += seconds; }
    void advanceTo(double uptime) { now_ = uptime; }

private:
    double now_ = 100;
};

} // namespace vantrel::headless
