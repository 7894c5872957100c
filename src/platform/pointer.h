#pragma once

#include "platform/geometry.h"

#include <optional>

namespace vantrel {

// The mouse pointer.
class Pointer {
public:
    virtual ~Pointer() = default;

    // Where its hot spot is now, asked anew in each turn of the event loop; the last known place
    // when the desktop does not answer, and nothing when it does not know itself.
    [[nodiscard]] virtual std::optional<GlobalPoint> location() = 0;
};

} // namespace vantrel
