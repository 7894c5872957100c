#include "preferences/preferences.h"

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

double bounded(double value, const Range& range) {
    return std::isfinite(value) ? std::clamp(value, range.low, range.high) : range.initial;
}

void sanitizeColor(EffectColor& color) {
    constexpr auto fallback = EffectColor::fallback();
    color.red = bounded(color.red, {0, 1, fallback.red});
    color.green = bounded(color.green, {0, 1, fallback.green});
    color.blue = bounded(color.blue, {0, 1, fallback.blue});
}

} // namespace

std::span<const EffectColor, 6> EffectColor::presets() {
    static constexpr std::array<EffectColor, 6> colors{
        fromRgb(0xFACC15), fromRgb(0x34C759), fromRgb(0x0A84FF),
        fromRgb(0xFF453A), fromRgb(0xBF5AF2), fromRgb(0xFFFFFF),
    };
    return colors;
}

std::span<const EffectColor, 3> EffectColor::laserPresets() {
    static const std::array<EffectColor, 3> colors{presets()[3], presets()[1], presets()[2]};
    return colors;
}

void AppPreferences::sanitize() {
    highlight.diameter = bounded(highlight.diameter, highlightDiameterRange);
    highlight.opacity = bounded(highlight.opacity, highlightOpacityRange);
    if (std::ranges::find(idleChoices, highlight.idleSeconds) == idleChoices.end()) {
        highlight.idleSeconds = initialIdleSeconds;
    }
    laser.diameter = bounded(laser.diameter, laserDiameterRange);
    sanitizeColor(highlight.color);
    sanitizeColor(laser.color);
    schemaVersion = currentSchemaVersion;
}

} // namespace vantrel
