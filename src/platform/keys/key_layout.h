#pragma once

#include "platform/input.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <xkbcommon/xkbcommon.h>

namespace vantrel {

template <auto Release>
struct Unref {
    template <typename T>
    void operator()(T* object) const {
        Release(object);
    }
};
using KeyContext = std::unique_ptr<xkb_context, Unref<xkb_context_unref>>;
using Keymap = std::unique_ptr<xkb_keymap, Unref<xkb_keymap_unref>>;

inline constexpr std::uint32_t shiftBit = 1U << 0U;

// Which bits of a key event's modifiers stand for those of shortcuts. Shift, Control and Caps Lock
// are fixed; the keyboard mapping decides over the others.
struct ModifierBits {
    std::uint32_t option = 1U << 3U;  // Alt
    std::uint32_t command = 1U << 6U; // Super
    std::uint32_t locks = 1U << 1U;   // Caps, Num and Scroll Lock; none of the modifiers

    bool operator==(const ModifierBits&) const = default;

    // A modifier that no key has keeps its usual bit.
    [[nodiscard]] static ModifierBits of(xkb_keymap& keymap);

    // From the modifier bits of HotKeys; nothing when there are others among them.
    [[nodiscard]] std::optional<std::uint32_t> stateOf(std::uint32_t modifiers) const;
};

// What the keys of a keyboard stand for, in one of its layouts, which are numbered from 0.
class KeyLayout {
public:
    // Without a keymap, keys have their place only.
    KeyLayout(Keymap keymap, ModifierBits modifiers);

    [[nodiscard]] const ModifierBits& modifiers() const { return modifiers_; }
    [[nodiscard]] std::optional<KeyPress> press(std::uint32_t key, std::uint32_t modifiers,
                                                std::uint32_t layout) const;
    // Whether the key is held for the sake of others, also to change the layout.
    [[nodiscard]] bool isModifier(std::uint32_t key) const;
    // What the key produces without modifiers in the first layout, as keymaps call it; empty where
    // it produces nothing.
    [[nodiscard]] std::string symbolOf(std::uint32_t key) const;
    // Which symbol shortcuts of a Wayland desktop go by: where what the key produces in that layout
    // is no Latin character, that of the first layout which has one there, unless another key
    // produces that one in a layout before. None for dead keys.
    [[nodiscard]] xkb_keysym_t shortcutSymbol(std::uint32_t key, std::uint32_t modifiers,
                                              std::uint32_t layout, bool numLock) const;
    // In which layout the key produces that symbol with the modifiers; the first for want of any.
    [[nodiscard]] std::uint32_t layoutWith(xkb_keysym_t symbol, std::uint32_t key,
                                           std::uint32_t modifiers) const;

private:
    using State = std::unique_ptr<xkb_state, Unref<xkb_state_unref>>;

    [[nodiscard]] State stateWith(std::uint32_t modifiers, std::uint32_t layout,
                                  bool numLock = true) const;
    // Whether any key produces it in one of so many layouts.
    [[nodiscard]] bool isIn(xkb_keysym_t symbol, std::uint32_t layoutsBefore, bool numLock) const;
    [[nodiscard]] xkb_keysym_t plainSymbol(std::uint32_t key, std::uint32_t layout) const;
    [[nodiscard]] std::uint32_t flagsOf(std::uint32_t modifiers) const;
    [[nodiscard]] std::optional<std::string>
    charactersOf(std::uint32_t key, std::uint32_t modifiers, std::uint32_t layout) const;

    Keymap keymap_;
    ModifierBits modifiers_;
};

} // namespace vantrel
