#pragma once

#include <cstdint>

namespace vantrel::desktop {

// How often memory was taken in this process, in any thread. Whoever calls it has all of it
// counted.
[[nodiscard]] std::uint64_t allocations();

} // namespace vantrel::desktop
