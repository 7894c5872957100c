#pragma once

#include "platform/time.h"

namespace vantrel {

// The clock of this machine.
class SystemClock final : public Clock {
public:
    [[nodiscard]] double uptime() const override;
    [[nodiscard]] double mediaTime() const override;
};

} // namespace vantrel
