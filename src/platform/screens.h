#pragma once

#include "platform/geometry.h"
#include "platform/subscription.h"

#include <algorithm>
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
    // Called after more than visible frames changed, before onChange() is.
    [[nodiscard]] virtual Subscription onLayoutChange(std::function<void()> callback) = 0;
};

// Whether they differ in no more than their visible frames.
[[nodiscard]] inline bool haveSameLayout(const std::vector<Screen>& a,
                                         const std::vector<Screen>& b) {
    return std::ranges::equal(a, b, [](Screen one, const Screen& other) {
        one.visibleFrame = other.visibleFrame;
        return one == other;
    });
}

} // namespace vantrel
