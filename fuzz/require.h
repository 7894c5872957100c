#pragma once

#include <cstdlib>

namespace vantrel {

// Stops the fuzzer, which keeps the input, when a property does not hold.
inline void require(bool property) {
    if (!property) {
        std::abort();
    }
}

} // namespace vantrel
