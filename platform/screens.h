#pragma once

#include "platform/geometry.h"
#include "platform/subscription.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace vantrel {

// One display.
struct Screen {
    std::uint32_t id = 0;              // the same for as long as the display stays
    GlobalRect frame;                  // all of it
    GlobalRect visibleFrame;           // without the desktop's panels
    double backingScale = 1;           // pixels for each point
    double maximumFramesPerSecond = 0; // 0 when the display does not tell

    bool operator==(const Screen&) const = default;
};

// The displays of the desktop, the primary one first.
class Screens {
public:
    virtual ~Screens() = default;

    // May be empty, for instance while every display is unplugged.
    [[nodiscard]] virtual const std::vector<Screen>& list() const = 0;
    // Called after list() changed in any way.
    [[nodiscard]] virtual Subscription onChange(std::function<void()> callback) = 0;
};

} // namespace vantrel
