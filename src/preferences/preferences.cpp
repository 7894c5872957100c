#include "preferences/preferences.h"

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

// Brings all that has bounds back into them.
struct Sanitizer {
    void operator()(std::string_view /*name*/, double& member, const Range& range) {
        member = std::isfinite(member) ? std::clamp(member, range.low, range.high) : range.initial;
    }

    void operator()(std::string_view /*name*/, double& member, const Choices& choices) {
        if (std::ranges::find(choices.values, member) == choices.values.end()) {
            member = choices.initial;
        }
    }

    template <typename T>
    void operator()(std::string_view name, std::optional<T>& member, const auto&... bounds) {
        if (member) {
            (*this)(name, *member, bounds...);
        }
    }

    void operator()(std::string_view /*name*/, auto& member) {
        if constexpr (requires { visitMembers(member, *this); }) {
            visitMembers(member, *this);
        }
    }
};

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
    Sanitizer sanitizer;
    visitMembers(*this, sanitizer);
    schemaVersion = currentSchemaVersion;
}

} // namespace vantrel
