#pragma once

#include <chrono>
#include <functional>

namespace vantrel::desktop {

// Asks again and again, first after a fraction of a millisecond and at last every two, until the
// condition holds or the time is over. Returns whether it held.
bool waitFor(const std::function<bool()>& condition,
             std::chrono::milliseconds limit = std::chrono::seconds(10));

} // namespace vantrel::desktop
