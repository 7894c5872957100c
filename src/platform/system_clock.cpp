#include "platform/system_clock.h"

#include <ctime>

namespace vantrel {

double SystemClock::uptime() const {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double SystemClock::mediaTime() const {
    return uptime();
}

} // namespace vantrel
