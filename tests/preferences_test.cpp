#include "preferences/preferences.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace vantrel {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

struct Bound {
    double& (*field)(AppPreferences&);
    double loaded;
    double expected;
};

double& diameter(AppPreferences& preferences) {
    return preferences.highlight.diameter;
}
double& opacity(AppPreferences& preferences) {
    return preferences.highlight.opacity;
}
double& idleSeconds(AppPreferences& preferences) {
    return preferences.highlight.idleSeconds;
}
double& laserDiameter(AppPreferences& preferences) {
    return preferences.laser.diameter;
}
double& red(AppPreferences& preferences) {
    return preferences.highlight.color.red;
}
double& green(AppPreferences& preferences) {
    return preferences.laser.color.green;
}
double& blue(AppPreferences& preferences) {
    return preferences.laser.color.blue;
}

TEST(Preferences, BringLoadedNumbersIntoTheirBounds) {
    const std::vector<Bound> bounds{
        {diameter, 200, 120},
        {diameter, 10, 24},
        {diameter, 24, 24},
        {diameter, 33.5, 33.5},
        {diameter, -1e308, 24},
        {diameter, infinity, 64},
        {diameter, notANumber, 64},
        {opacity, 0.05, 0.1},
        {opacity, 1, 0.9},
        {opacity, -infinity, 0.35},
        {idleSeconds, 2, 2},
        {idleSeconds, 5, 5},
        {idleSeconds, 10, 10},
        {idleSeconds, 4, 3},
        {idleSeconds, 2.5, 3},
        {idleSeconds, 0, 3},
        {idleSeconds, 1e9, 3},
        {idleSeconds, notANumber, 3},
        {laserDiameter, 30, 24},
        {laserDiameter, 1, 6},
        {laserDiameter, notANumber, 12},
        {red, -0.2, 0},
        {red, 1.5, 1},
        {red, notANumber, 1},
        {green, notANumber, 0.8},
        {green, 0.3, 0.3},
        {blue, infinity, 0},
    };
    for (const auto& bound : bounds) {
        AppPreferences loaded;
        bound.field(loaded) = bound.loaded;
        AppPreferences expected;
        bound.field(expected) = bound.expected;
        loaded.sanitize();
        EXPECT_EQ(loaded, expected) << "entry " << &bound - bounds.data();
    }
}

TEST(Preferences, KeepWhatHasNoBoundsWhenTheyAreSanitized) {
    AppPreferences loaded;
    loaded.schemaVersion = 7;
    loaded.highlightShortcut = Shortcut{4294967295, 0, ""};
    loaded.laserShortcut.reset();
    loaded.click.style = ClickStyle::none;
    auto expected = loaded;
    expected.schemaVersion = 1;
    loaded.sanitize();
    EXPECT_EQ(loaded, expected);
}

TEST(Preferences, DifferWhenOnlyTheTextOfAShortcutDiffers) {
    AppPreferences changed;
    EXPECT_EQ(changed, AppPreferences());
    changed.laserShortcut->display = "⌃⌥Ł";
    EXPECT_NE(changed, AppPreferences());
    EXPECT_TRUE(sameCombination(*changed.laserShortcut, Shortcut::defaultLaser()));
    EXPECT_FALSE(sameCombination(*changed.highlightShortcut, *changed.laserShortcut));
}

TEST(Preferences, OfferSixPresetsOfWhichTheFirstAndTheFourthAreTheDefaults) {
    const auto presets = EffectColor::presets();
    EXPECT_EQ(presets[0], (EffectColor{0.9803921568627451, 0.8, 0.08235294117647059}));
    EXPECT_EQ(presets[1], (EffectColor{52 / 255.0, 199 / 255.0, 89 / 255.0}));
    EXPECT_EQ(presets[5], (EffectColor{1, 1, 1}));
    EXPECT_EQ(HighlightSettings().color, presets[0]);
    EXPECT_EQ(LaserSettings().color, presets[3]);
}

TEST(Shortcut, IsRecordedWithItsModifiersInAFixedOrder) {
    using namespace keyflag;
    constexpr std::uint32_t capsLock = 0x10000;
    const std::vector<std::pair<KeyPress, Shortcut>> table{
        {{4, control | option, "h"}, Shortcut::defaultHighlight()},
        {{37, control | option | capsLock, "L"}, Shortcut::defaultLaser()},
        {{40, shift | command, "k"}, {40, 768, "⇧⌘K"}},
        {{0, command | shift | option | control, "a"}, {0, 6912, "⌃⌥⇧⌘A"}},
        {{27, option, "ß"}, {27, 2048, "⌥SS"}},
        {{49, control, " "}, {49, 4096, "⌃ "}},
        {{122, control, std::nullopt}, {122, 4096, "⌃122"}},
    };
    for (const auto& [press, shortcut] : table) {
        EXPECT_EQ(Shortcut::fromKeyPress(press), shortcut) << shortcut.display;
    }
}

TEST(Shortcut, NeedsControlOptionOrCommand) {
    for (const std::uint32_t flags : {0U, keyflag::shift, 0x10000U}) {
        EXPECT_EQ(Shortcut::fromKeyPress({0, flags, "a"}), std::nullopt) << flags;
    }
}

} // namespace
} // namespace vantrel
