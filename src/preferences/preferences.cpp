#include "preferences/preferences.h"

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

double bounded(double value, double low, double high, double otherwise) {
    return std::isfinite(value) ? std::clamp(value, low, high) : otherwise;
}

void sanitizeColor(EffectColor& color) {
    constexpr auto fallback = EffectColor::fallback();
    color.red = bounded(color.red, 0, 1, fallback.red);
    color.green = bounded(color.green, 0, 1, fallback.green);
    color.blue = bounded(color.blue, 0, 1, fallback.blue);
}

} // namespace

std::span<const EffectColor, 6> EffectColor::presets() {
    static constexpr std::array<EffectColor, 6> colors{
        fromRgb(0xFACC15), fromRgb(0x34C759), fromRgb(0x0A84FF),
        fromRgb(0xFF453A), fromRgb(0xBF5AF2), fromRgb(0xFFFFFF),
    };
    return colors;
}

void AppPreferences::sanitize() {
    static constexpr std::array idleChoices{2.0, 3.0, 5.0, 10.0};
    const HighlightSettings highlightDefaults;
    const LaserSettings laserDefaults;

    highlight.diameter = bounded(highlight.diameter, 24, 120, highlightDefaults.diameter);
    highlight.opacity = bounded(highlight.opacity, 0.1, 0.9, highlightDefaults.opacity);
    if (std::ranges::find(idleChoices, highlight.idleSeconds) == idleChoices.end()) {
        highlight.idleSeconds = highlightDefaults.idleSeconds;
    }
    laser.diameter = bounded(laser.diameter, 6, 24, laserDefaults.diameter);
    sanitizeColor(highlight.color);
    sanitizeColor(laser.color);
    schemaVersion = currentSchemaVersion;
}

} // namespace vantrel
