#pragma once

#include "platform/input.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

// A global key combination, with the text that was shown when it was recorded.
struct Shortcut {
    std::uint32_t keyCode = 0;   // virtual key code
    std::uint32_t modifiers = 0; // modifier bits
    std::string display;         // UTF-8, for example "⌃⌥H"; never computed anew

    bool operator==(const Shortcut&) const = default;

    // No shortcut when the press holds none of Control, Option and Command.
    [[nodiscard]] static std::optional<Shortcut> fromKeyPress(const KeyPress& press);

    static Shortcut defaultHighlight();
    static Shortcut defaultLaser();
};

// Whether two shortcuts are pressed with the same keys, whatever text they show.
[[nodiscard]] bool sameCombination(const Shortcut& a, const Shortcut& b);

} // namespace vantrel
