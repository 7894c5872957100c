#pragma once

#include "platform/geometry.h"
#include "preferences/preferences.h"

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

    [[nodiscard]] double duration() const; // seconds
    [[nodiscard]] bool isLive(double now) const { return now - started < duration(); }
    // The square that it may draw in.
    [[nodiscard]] GlobalRect box() const;
};

} // namespace vantrel
