#pragma once

#include "preferences/shortcut.h"

#include <array>
#include <concepts>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>

namespace vantrel {

enum class CursorMode : std::uint8_t { off, highlight, laser };
enum class HighlightStyle : std::uint8_t { filled, ring, glow };
enum class ClickStyle : std::uint8_t { none, ripple, pulse };
enum class GlowStrength : std::uint8_t { low, medium, high };
enum class AppLanguage : std::uint8_t { system, chinese, english };

// The cases of an enumeration in their order, each with the name under which it is stored.
template <typename Enum>
struct CasesOf;

template <typename Enum, std::size_t count = 3>
using CaseTable = std::array<std::pair<Enum, std::string_view>, count>;

template <>
struct CasesOf<CursorMode> {
    static constexpr CaseTable<CursorMode> table{{{CursorMode::off, "off"},
                                                  {CursorMode::highlight, "highlight"},
                                                  {CursorMode::laser, "laser"}}};
};
template <>
struct CasesOf<HighlightStyle> {
    static constexpr CaseTable<HighlightStyle> table{{{HighlightStyle::filled, "filled"},
                                                      {HighlightStyle::ring, "ring"},
                                                      {HighlightStyle::glow, "glow"}}};
};
template <>
struct CasesOf<ClickStyle> {
    static constexpr CaseTable<ClickStyle> table{
        {{ClickStyle::none, "none"}, {ClickStyle::ripple, "ripple"}, {ClickStyle::pulse, "pulse"}}};
};
template <>
struct CasesOf<GlowStrength> {
    static constexpr CaseTable<GlowStrength> table{{{GlowStrength::low, "low"},
                                                    {GlowStrength::medium, "medium"},
                                                    {GlowStrength::high, "high"}}};
};
template <>
struct CasesOf<AppLanguage> {
    static constexpr CaseTable<AppLanguage> table{{{AppLanguage::system, "system"},
                                                   {AppLanguage::chinese, "chinese"},
                                                   {AppLanguage::english, "english"}}};
};

template <typename Enum>
constexpr auto allCases() {
    constexpr auto& table = CasesOf<Enum>::table;
    std::array<Enum, table.size()> cases{};
    for (std::size_t i = 0; i < cases.size(); ++i) {
        cases[i] = table[i].first;
    }
    return cases;
}

template <typename Enum>
constexpr std::string_view nameOf(Enum value) {
    return CasesOf<Enum>::table[static_cast<std::size_t>(value)].second;
}

// Matched exactly; no case for any other string.
template <typename Enum>
constexpr std::optional<Enum> caseNamed(std::string_view name) {
    for (const auto& [value, text] : CasesOf<Enum>::table) {
        if (text == name) {
            return value;
        }
    }
    return std::nullopt;
}

// An opaque sRGB colour, each component from 0 to 1.
struct EffectColor {
    double red = 0;
    double green = 0;
    double blue = 0;

    bool operator==(const EffectColor&) const = default;

    // From 0xRRGGBB.
    static constexpr EffectColor fromRgb(std::uint32_t rgb) {
        return {((rgb >> 16) & 0xFF) / 255.0, ((rgb >> 8) & 0xFF) / 255.0, (rgb & 0xFF) / 255.0};
    }
    // Stands in for components that no colour can have.
    static constexpr EffectColor fallback() { return {1.0, 0.8, 0.0}; }
    // The palettes: yellow, green, blue, red, purple, white; of these, red, green and blue.
    static std::span<const EffectColor, 6> presets();
    static std::span<const EffectColor, 3> laserPresets();
};

// What a number among the preferences can be, and is at first: one of a range, or of a few.
struct Range {
    double low = 0;
    double high = 0;
    double initial = 0;
};
struct Choices {
    std::span<const double> values;
    double initial = 0;
};

// What a record consists of is listed below it, once for all who go through it, in the order of the
// document: the name under which a member is stored, the member, and its bounds if it has some.
template <typename T, typename Record>
concept ConstOrNot = std::same_as<std::remove_const_t<T>, Record>;

void visitMembers(ConstOrNot<EffectColor> auto& color, auto& visit) {
    constexpr auto fallback = EffectColor::fallback();
    visit("red", color.red, Range{0, 1, fallback.red});
    visit("green", color.green, Range{0, 1, fallback.green});
    visit("blue", color.blue, Range{0, 1, fallback.blue});
}

void visitMembers(ConstOrNot<Shortcut> auto& shortcut, auto& visit) {
    visit("keyCode", shortcut.keyCode);
    visit("modifiers", shortcut.modifiers);
    visit("display", shortcut.display);
}

inline constexpr Range highlightDiameterRange{.low = 24, .high = 120, .initial = 64}; // points
inline constexpr Range highlightOpacityRange{.low = 0.1, .high = 0.9, .initial = 0.35};
inline constexpr Range laserDiameterRange{.low = 6, .high = 24, .initial = 12}; // points
// Seconds of rest before a mark hides.
inline constexpr std::array idleTimes{2.0, 3.0, 5.0, 10.0};
inline constexpr Choices idleChoices{.values = idleTimes, .initial = idleTimes[1]};

struct HighlightSettings {
    HighlightStyle style = HighlightStyle::filled;
    EffectColor color = EffectColor::fromRgb(0xFACC15);
    double diameter = highlightDiameterRange.initial;
    double opacity = highlightOpacityRange.initial;
    bool idleHide = false; // hide while the pointer rests
    double idleSeconds = idleChoices.initial;

    bool operator==(const HighlightSettings&) const = default;
};

void visitMembers(ConstOrNot<HighlightSettings> auto& highlight, auto& visit) {
    visit("style", highlight.style);
    visit("color", highlight.color);
    visit("diameter", highlight.diameter, highlightDiameterRange);
    visit("opacity", highlight.opacity, highlightOpacityRange);
    visit("idleHide", highlight.idleHide);
    visit("idleSeconds", highlight.idleSeconds, idleChoices);
}

struct ClickSettings {
    ClickStyle style = ClickStyle::ripple;
    bool left = true;
    bool right = true;

    bool operator==(const ClickSettings&) const = default;
};

void visitMembers(ConstOrNot<ClickSettings> auto& click, auto& visit) {
    visit("style", click.style);
    visit("left", click.left);
    visit("right", click.right);
}

struct LaserSettings {
    EffectColor color = EffectColor::fromRgb(0xFF453A);
    double diameter = laserDiameterRange.initial;
    GlowStrength glow = GlowStrength::medium;

    bool operator==(const LaserSettings&) const = default;
};

void visitMembers(ConstOrNot<LaserSettings> auto& laser, auto& visit) {
    visit("color", laser.color);
    visit("diameter", laser.diameter, laserDiameterRange);
    visit("glow", laser.glow);
}

// Every choice of the user.
struct AppPreferences {
    static constexpr std::int64_t currentSchemaVersion = 1;

    std::int64_t schemaVersion = currentSchemaVersion;
    CursorMode lastMode = CursorMode::off;
    HighlightSettings highlight;
    ClickSettings click;
    LaserSettings laser;
    std::optional<Shortcut> highlightShortcut = Shortcut::defaultHighlight();
    std::optional<Shortcut> laserShortcut = Shortcut::defaultLaser();
    bool launchAtLogin = false;
    AppLanguage language = AppLanguage::system;

    bool operator==(const AppPreferences&) const = default;

    // Brings every bounded field back into its range. For values that were read from storage.
    void sanitize();
};

void visitMembers(ConstOrNot<AppPreferences> auto& preferences, auto& visit) {
    visit("schemaVersion", preferences.schemaVersion);
    visit("lastMode", preferences.lastMode);
    visit("highlight", preferences.highlight);
    visit("click", preferences.click);
    visit("laser", preferences.laser);
    visit("highlightShortcut", preferences.highlightShortcut);
    visit("laserShortcut", preferences.laserShortcut);
    visit("launchAtLogin", preferences.launchAtLogin);
    visit("language", preferences.language);
}

} // namespace vantrel
