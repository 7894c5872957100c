#pragma once

#include "platform/keys/key_layout.h"
#include "platform/x11/connection.h"

namespace vantrel::x11 {

struct ModifierMap : ModifierBits {
    bool operator==(const ModifierMap&) const = default;

    // As it is now, in one round trip. A modifier that no key has keeps its usual bit.
    static ModifierMap read(const Connection& connection);
};

} // namespace vantrel::x11
