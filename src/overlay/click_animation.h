#pragma once

#include "overlay/effect.h"
#include "platform/geometry.h"

#include <QColor>
#include <QUuid>

namespace vantrel {

// One click effect that is playing.
struct ClickAnimation {
    QUuid id; // fresh for every click
    GlobalPoint point;
    double started = 0; // seconds of uptime
    ClickStyle style = ClickStyle::ripple;
    QColor color; // opaque

    bool operator==(const ClickAnimation&) const = default;

    [[nodiscard]] ClickRing ring() const { return clickRing(style, color); }
    [[nodiscard]] double duration() const { return ring().duration; } // seconds
    [[nodiscard]] bool isLive(double now) const { return now - started < duration(); }
    // The square that it may draw in.
    static constexpr double boxSide = 96;
    [[nodiscard]] GlobalRect box() const { return squareAround(point, boxSide); }
};

} // namespace vantrel
