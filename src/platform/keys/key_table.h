#pragma once

#include <cstdint>
#include <optional>

namespace vantrel {

// The keys that shortcuts are made of, by their place on the keyboard: stored shortcuts name it
// with a virtual key code, X servers and compositors with a keycode. Layouts do not move either of
// them. Modifier keys and keys that only few keyboards have are in neither direction.

[[nodiscard]] std::optional<std::uint8_t> keycodeOf(std::uint32_t virtualKeyCode);
[[nodiscard]] std::optional<std::uint16_t> virtualKeyCodeOf(std::uint32_t keycode);

} // namespace vantrel
