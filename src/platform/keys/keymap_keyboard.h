#pragma once

#include "platform/input.h"
#include "platform/keys/key_layout.h"
#include "platform/subscription.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vantrel {

// Keys by keycode, as the desktop's keymap has them.
//
// Alt is Option and Super is Command, on either side of the keyboard. AltGr, and other modifiers
// that no shortcut can have, leave a press without any flag, so that it is not taken for the
// shortcut that it would be without them.
class KeymapKeyboard : public Keyboard {
public:
    [[nodiscard]] bool isModifier(std::uint32_t key) const override {
        return layout().isModifier(key);
    }

    // Without modifiers, in that layout of several, from 0.
    [[nodiscard]] std::optional<KeyPress> pressIn(std::uint32_t layoutNumber, std::uint32_t key,
                                                  bool withShift = false) const {
        return layout().press(key, withShift ? shiftBit : 0, layoutNumber);
    }
    // What the key produces without modifiers, as keymaps call it; empty where it produces nothing.
    [[nodiscard]] std::string symbolOf(std::uint32_t key) const { return layout().symbolOf(key); }

    // Called when keys have got another meaning.
    Observers<> changes;

protected:
    [[nodiscard]] virtual const KeyLayout& layout() const = 0;
};

} // namespace vantrel
