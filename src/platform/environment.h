#pragma once

#include <cstdlib>
#include <string>

namespace vantrel {

// A variable of the environment; empty when it is not set.
[[nodiscard]] inline std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

} // namespace vantrel
