#pragma once

#include "platform/input.h"
#include "platform/keys/key_layout.h"
#include "platform/keys/toolkit_key.h"
#include "platform/subscription.h"

#include <cstdint>
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

    // In that layout of several, from 0.
    [[nodiscard]] QList<int> toolkitKeys(std::uint32_t key, std::uint32_t modifiers,
                                         std::uint32_t layoutNumber) const {
        return toolkitKeysOf(layout(), key, modifiers, layoutNumber);
    }
    // What the key produces without modifiers, as keymaps call it; empty where it produces nothing.
    [[nodiscard]] std::string symbolOf(std::uint32_t key) const { return layout().symbolOf(key); }

    // Called when keys have got another meaning.
    Observers<> changes;

protected:
    [[nodiscard]] virtual const KeyLayout& layout() const = 0;
};

} // namespace vantrel
