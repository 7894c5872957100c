#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vantrel::desktop {

// Those of wlroots, as programs that are found in PATH.
enum class Compositor : std::uint8_t { sway, labwc };

[[nodiscard]] std::string nameOf(Compositor compositor);

// Such as "1.12"; empty when none is installed.
[[nodiscard]] std::string versionOf(Compositor compositor);

// Whether the one that is installed, if any, tells programs where the pointer is.
[[nodiscard]] bool followsPointers(Compositor compositor);

// A compositor's command. Root, as whom sway refuses to run, becomes nobody for it, with the right
// to write where root does.
[[nodiscard]] std::vector<std::string> asOrdinaryUser(std::vector<std::string> command);

} // namespace vantrel::desktop
