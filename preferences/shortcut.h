#pragma once

#include "platform/hot_keys.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

// Modifier flags of a key event; other bits of a flag word mean nothing here.
namespace keyflag {
inline constexpr std::uint32_t shift = 0x20000;
inline constexpr std::uint32_t control = 0x40000;
inline constexpr std::uint32_t option = 0x80000;
inline constexpr std::uint32_t command = 0x100000;
} // namespace keyflag

// What a key event tells the shortcut recorder.
struct KeyPress {
    std::uint16_t keyCode = 0;       // virtual key code: a position, whatever the layout
    std::uint32_t modifierFlags = 0; // keyflag bits
    // UTF-8: what the key produces with no modifier but Shift; absent when it produces nothing.
    std::optional<std::string> charactersIgnoringModifiers;
};

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
