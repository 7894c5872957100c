#pragma once

#include "platform/geometry.h"

namespace vantrel {

// The mouse pointer.
class Pointer {
public:
    virtual ~Pointer() = default;

    // Where its hot spot is now, asked anew at each call; the last known place when the desktop
    // does not answer.
    [[nodiscard]] virtual GlobalPoint location() = 0;
};

} // namespace vantrel
