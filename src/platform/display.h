#pragma once

#include "platform/geometry.h"
#include "platform/subscription.h"

#include <QImage>
#include <QPointF>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

// The displays: where they are, when their frames come, and the pictures of the pointer on them.

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

// Frames for each second.
struct FrameRateRange {
    float minimum = 0;
    float maximum = 0;
    float preferred = 0;

    bool operator==(const FrameRateRange&) const = default;
};

// Calls its target once for each frame of a display, until it is destroyed.
class DisplayLink {
public:
    virtual ~DisplayLink() = default;
};

class DisplayLinks {
public:
    virtual ~DisplayLinks() = default;

    [[nodiscard]] virtual std::unique_ptr<DisplayLink>
    create(const Screen& screen, FrameRateRange range, std::function<void()> target) = 0;
};

// A picture of the arrow pointer.
struct CursorImage {
    QImage image;    // with its device pixel ratio
    QPointF hotSpot; // in points, from the picture's top-left corner

    bool operator==(const CursorImage&) const = default;
};

// Where pictures of the pointer come from.
class CursorImages {
public:
    virtual ~CursorImages() = default;

    // For a display with that many pixels for each point.
    [[nodiscard]] virtual CursorImage arrow(double scale) const = 0;
};

} // namespace vantrel
