#pragma once

#include <cstdlib>
#include <filesystem>

namespace vantrel::desktop {

// What was built, or something else that the environment names, such as what is installed.
inline std::filesystem::path underTest(const char* variable, const char* built) {
    const char* named = std::getenv(variable);
    return named != nullptr ? named : built;
}

inline std::filesystem::path programUnderTest() {
    return underTest("VANTREL_PROGRAM", VANTREL_PROGRAM);
}

} // namespace vantrel::desktop
