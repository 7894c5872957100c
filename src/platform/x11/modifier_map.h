#pragma once

#include "platform/keys/key_layout.h"
#include "platform/x11/connection.h"

#include <cstdint>
#include <optional>

namespace vantrel::x11 {

struct ModifierMap : ModifierBits {
    bool operator==(const ModifierMap&) const = default;

    // As it is now, in one round trip. A modifier that no key has keeps its usual bit.
    static ModifierMap read(const Connection& connection);

    // From the modifier bits of HotKeys; nothing when there are others among them.
    [[nodiscard]] std::optional<std::uint32_t> stateOf(std::uint32_t modifiers) const;
};

} // namespace vantrel::x11
