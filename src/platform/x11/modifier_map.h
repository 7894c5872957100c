#pragma once

#include "platform/x11/connection.h"

#include <cstdint>
#include <optional>

namespace vantrel::x11 {

// Which bits of a key event's state stand for the modifiers of shortcuts. Shift, Control and Caps
// Lock are fixed; the keyboard mapping decides over the others.
struct ModifierMap {
    std::uint32_t option = XCB_MOD_MASK_1;   // Alt
    std::uint32_t command = XCB_MOD_MASK_4;  // Super
    std::uint32_t locks = XCB_MOD_MASK_LOCK; // Caps, Num and Scroll Lock; none of the modifiers

    bool operator==(const ModifierMap&) const = default;

    // As it is now, in one round trip. A modifier that no key has keeps its usual bit.
    static ModifierMap read(const Connection& connection);

    // From the modifier bits of HotKeys; nothing when there are others among them.
    [[nodiscard]] std::optional<std::uint32_t> stateOf(std::uint32_t modifiers) const;
};

} // namespace vantrel::x11
