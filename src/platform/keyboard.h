#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vantrel {

// Modifier flags of a key event; other bits of a flag word mean nothing here.
namespace keyflag {
inline constexpr std::uint32_t shift = 0x20000;
inline constexpr std::uint32_t control = 0x40000;
inline constexpr std::uint32_t option = 0x80000;
inline constexpr std::uint32_t command = 0x100000;
} // namespace keyflag

// A key press, by where the key lies and by what it produces.
struct KeyPress {
    std::uint16_t keyCode = 0;       // virtual key code: a position, whatever the layout
    std::uint32_t modifierFlags = 0; // keyflag bits
    // UTF-8: what the key produces with no modifier but Shift; absent when it produces nothing.
    // None of the characters that nobody sees, such as a space.
    std::optional<std::string> charactersIgnoringModifiers;
    std::string
        name{}; // of a key without such characters, for example "F5"; empty when it has none

    bool operator==(const KeyPress&) const = default;
};

// What the keys of the keyboard stand for.
class Keyboard {
public:
    virtual ~Keyboard() = default;

    // Of a press as the desktop numbers it: the key, and the state of modifiers and layout. Nothing
    // for keys that no shortcut can be made of.
    [[nodiscard]] virtual std::optional<KeyPress> press(std::uint32_t key,
                                                        std::uint32_t state) const = 0;
    // Whether the key is held for the sake of others, such as Shift and Caps Lock.
    [[nodiscard]] virtual bool isModifier(std::uint32_t key) const = 0;
};

} // namespace vantrel
