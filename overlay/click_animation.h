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

// Whether the settings want an effect for a click with the right button, or with the left.
[[nodiscard]] constexpr bool wantsClick(const ClickSettings& settings, bool isRight) {
    return settings.style != ClickStyle::none && (isRight ? settings.right : settings.left);
}

} // namespace vantrel
