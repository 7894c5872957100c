#include "preferences/preferences.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>
#include <vector>

namespace vantrel {
namespace {

// A record whose bounded fields hold these.
AppPreferences bounded(double diameter, double opacity, double idle, double laser,
                       EffectColor color) {
    AppPreferences preferences;
    preferences.highlight.diameter = diameter;
    preferences.highlight.opacity = opacity;
    preferences.highlight.idleSeconds = idle;
    preferences.laser.diameter = laser;
    preferences.highlight.color = preferences.laser.color = color;
    return preferences;
}

TEST(Preferences, BringLoadedNumbersIntoTheirBoundsAndTouchNothingElse) {
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const std::vector<std::pair<AppPreferences, AppPreferences>> table{
        {bounded(10, 0.05, 0, 1, {-0.2, -1, -9}), bounded(24, 0.1, 3, 6, {0, 0, 0})},
        {bounded(200, 1, 4, 30, {1.5, 2, 9}), bounded(120, 0.9, 3, 24, {1, 1, 1})},
        {bounded(none, none, none, none, {none, none, none}),
         bounded(64, 0.35, 3, 12, {1, 0.8, 0})},
        {bounded(infinity, -infinity, infinity, -infinity, {infinity, -infinity, infinity}),
         bounded(64, 0.35, 3, 12, {1, 0.8, 0})},
    };
    for (auto [loaded, expected] : table) {
        loaded.schemaVersion = 7;
        loaded.highlightShortcut = expected.highlightShortcut = Shortcut{4294967295, 0, ""};
        loaded.sanitize();
        EXPECT_EQ(loaded, expected) << expected.highlight.diameter;
    }
    for (const double seconds : {2, 3, 5, 10}) {
        auto kept = bounded(24, 0.9, seconds, 24, {0.3, 1, 0});
        const auto expected = kept;
        kept.sanitize();
        EXPECT_EQ(kept, expected) << seconds;
    }
}

TEST(Preferences, OfferSixPresets) {
    const auto presets = EffectColor::presets();
    const std::vector<EffectColor> expected{
        {250 / 255.0, 204 / 255.0, 21 / 255.0}, {52 / 255.0, 199 / 255.0, 89 / 255.0},
        {10 / 255.0, 132 / 255.0, 1},           {1, 69 / 255.0, 58 / 255.0},
        {191 / 255.0, 90 / 255.0, 242 / 255.0}, {1, 1, 1}};
    EXPECT_EQ(std::vector(presets.begin(), presets.end()), expected);
}

TEST(Shortcut, IsRecordedWithItsModifiersInAFixedOrder) {
    using namespace keyflag;
    constexpr std::uint32_t capsLock = 0x10000;
    const std::vector<std::pair<KeyPress, std::optional<Shortcut>>> table{
        {{4, control | option, "h"}, Shortcut::defaultHighlight()},
        {{37, control | option | capsLock, "L"}, Shortcut::defaultLaser()},
        {{40, shift | command, "k"}, Shortcut{40, 768, "⇧⌘K"}},
        {{0, command | shift | option | control, "a"}, Shortcut{0, 6912, "⌃⌥⇧⌘A"}},
        {{27, option, "ß"}, Shortcut{27, 2048, "⌥SS"}},
        {{122, control, std::nullopt}, Shortcut{122, 4096, "⌃122"}},
        {{126, control, std::nullopt, "Up"}, Shortcut{126, 4096, "⌃Up"}},
        {{83, control, "1", "KP_End"}, Shortcut{83, 4096, "⌃1"}},
        {{0, shift | capsLock, "a"}, std::nullopt},
    };
    for (const auto& [press, shortcut] : table) {
        EXPECT_EQ(Shortcut::fromKeyPress(press), shortcut) << press.keyCode;
    }
}

} // namespace
} // namespace vantrel
