#include "platform/keys/toolkit_key.h"
#include "platform/session_means.h"
#include "platform/wayland/outputs.h"
#include "platform/wayland/pointer_track.h"
#include "platform/wayland/sprite_cut.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <utility>

#include <linux/input-event-codes.h>

namespace vantrel::wayland {
namespace {

TEST(SessionMeansTest, TakesTheBestThatTheSessionOffers) {
    using enum Means;
    struct Case {
        const char* session;
        SessionOffer offer;
        SessionMeans means; // to draw, follow, see presses, take shortcuts
    };
    constexpr SessionMeans throughXwayland{xwayland, xwayland, xwayland, xwayland};
    for (const auto& [session, offer, means] : {
             Case{"X", {}, {x11, x11, x11, x11}},
             Case{"X beside a compositor",
                  {.layerShell = true, .cursorSessions = true},
                  {x11, x11, x11, x11}},
             Case{"GNOME without the extension",
                  {.wayland = true, .xwayland = true},
                  throughXwayland},
             Case{"GNOME whose extension has gone", {.wayland = true}, {none, none, none, none}},
             Case{"GNOME",
                  {.wayland = true, .marks = true, .markedPresses = true},
                  {desktop, desktop, desktop, desktop}},
             Case{"KWin that tells of no presses",
                  {.wayland = true, .layerShell = true, .marks = true},
                  {desktop, desktop, none, desktop}},
             Case{"KWin that draws nothing",
                  {.wayland = true, .xwayland = true, .layerShell = true},
                  throughXwayland},
             Case{"an older sway",
                  {.wayland = true, .xwayland = true, .layerShell = true},
                  throughXwayland},
             Case{"cursor sessions alone",
                  {.wayland = true, .xwayland = true, .cursorSessions = true},
                  throughXwayland},
             Case{"sway",
                  {.wayland = true, .layerShell = true, .cursorSessions = true},
                  {layerShell, cursorSession, none, none}},
             Case{"sway with X windows",
                  {.wayland = true, .xwayland = true, .layerShell = true, .cursorSessions = true},
                  {layerShell, cursorSession, none, xwayland}},
             Case{"Hyprland",
                  {.wayland = true, .layerShell = true, .cursorSessions = true, .portal = true},
                  {layerShell, cursorSession, none, Means::portal}},
             Case{"a compositor with all of it",
                  {true, true, true, true, true, true, true},
                  {desktop, desktop, desktop, desktop}},
         }) {
        EXPECT_EQ(meansOf(offer), means) << session;
    }
    const SessionOffer sway{
        .wayland = true, .xwayland = true, .layerShell = true, .cursorSessions = true};
    EXPECT_EQ(meansOf(heldTo("xwayland", sway)), throughXwayland);
    EXPECT_EQ(heldTo("", sway), sway);
}

Keymap keymapOf(const char* layouts) {
    const KeyContext context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    const xkb_rule_names names{
        .rules = nullptr, .model = nullptr, .layout = layouts, .variant = "", .options = ""};
    return Keymap(xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
}

TEST(ToolkitKeyTest, IsTheOneThatPlasmaLooksFor) {
    constexpr int shift = Qt::ShiftModifier;
    constexpr int pad = Qt::KeypadModifier;
    struct Case {
        const char* layouts;
        std::uint32_t layout;
        std::uint32_t key; // a code of Linux
        std::uint32_t modifiers;
        QList<int> keys;
    };
    for (const auto& [layouts, number, key, held, keys] : std::vector<Case>{
             {"us", 0, KEY_L, modifier::shift, {Qt::Key_L | shift}},
             {"us", 0, KEY_1, modifier::shift, {Qt::Key_Exclam}},
             {"us", 0, KEY_F5, modifier::shift, {Qt::Key_F5 | shift}},
             {"us,ru", 1, KEY_L, 0, {Qt::Key_L}},
             {"ru", 0, KEY_L, 0, {0x414}},
             {"ru,us", 0, KEY_L, 0, {Qt::Key_L}},
             {"ru,us", 0, KEY_DOT, 0, {0x42e}},
             {"us", 0, KEY_F14, 0, {Qt::Key_Launch7}},
             {"ch", 0, KEY_LEFTBRACE, modifier::shift, {Qt::Key_Egrave | shift}},
             {"fr", 0, KEY_BACKSLASH, modifier::shift, {0xb5 | shift}},
             {"de", 0, KEY_EQUAL, 0, {}},
             {"us", 0, KEY_SYSRQ, modifier::control, {Qt::Key_Print}},
             {"us", 0, KEY_SYSRQ, modifier::option, {}},
             {"us", 0, KEY_PAUSE, modifier::option, {Qt::Key_Pause}},
             {"us", 0, KEY_KP7, 0, {Qt::Key_7 | pad, Qt::Key_Home | pad}},
         }) {
        auto keymap = keymapOf(layouts);
        const auto modifiers = ModifierBits::of(*keymap);
        const KeyLayout layout(std::move(keymap), modifiers);
        EXPECT_EQ(toolkitKeysOf(layout, key + 8, held, number), keys) << layouts << key;
    }
}

TEST(KeyLayoutTest, FindsTheLayoutAndTheModifiersOfAPress) {
    auto keymap = keymapOf("de,us");
    ASSERT_TRUE(keymap);
    const auto modifiers = ModifierBits::of(*keymap);
    constexpr std::uint32_t alt = 1U << 3U;
    constexpr std::uint32_t numLock = 1U << 4U;
    constexpr std::uint32_t super = 1U << 6U;
    constexpr std::uint32_t altGr = 1U << 7U;
    EXPECT_EQ(modifiers.option, alt);
    EXPECT_EQ(modifiers.command, super);
    EXPECT_EQ(modifiers.locks & numLock, numLock);
    const KeyLayout layout(std::move(keymap), modifiers);
    constexpr std::uint32_t keyY = KEY_Y + 8;
    EXPECT_EQ(layout.layoutWith(XKB_KEY_z, keyY, 0), 0U);
    EXPECT_EQ(layout.layoutWith(XKB_KEY_y, keyY, alt | numLock), 1U);
    EXPECT_EQ(layout.layoutWith(XKB_KEY_Y, keyY, 1), 1U);
    EXPECT_EQ(layout.layoutWith(XKB_KEY_F1, keyY, 0), 0U);
    struct Case {
        std::uint32_t modifiers;
        std::uint32_t flags;
    };
    for (const auto& [held, flags] :
         {Case{alt | numLock, keyflag::option}, Case{super | 1, keyflag::command | keyflag::shift},
          Case{altGr | super, 0}}) {
        EXPECT_EQ(layout.press(keyY, held, 0)->modifierFlags, flags) << held;
    }
    EXPECT_EQ(layout.press(keyY, alt, 1)->charactersIgnoringModifiers, "y");
    EXPECT_EQ(layout.press(keyY, alt, 0)->charactersIgnoringModifiers, "z");
    EXPECT_EQ(layout.symbolOf(keyY), "z");
}

// Where a picture's column shows, of compositors that begin a point at the nearest pixel.
int shownAt(const SpriteCut& cut, int column, double scale) {
    return static_cast<int>(std::lround(cut.points.left() * scale)) + column - cut.source.left();
}

TEST(SpriteCutTest, PutsEachPixelOfThePictureOntoOneOfTheDisplay) {
    constexpr QSize display(300, 200);
    constexpr QSize picture(97, 64);
    for (const double scale : {1.0, 1.25, 4 / 3.0, 1.5, 1.75, 2.0, 3.0}) {
        const int width = static_cast<int>(std::lround(display.width() * scale));
        for (int x = -picture.width() - 2; x <= width + 2; ++x) {
            const auto cut = cutAt({x, 10}, picture, display, scale);
            ASSERT_EQ(cut.has_value(), x > -picture.width() && x < width) << x << " at " << scale;
            if (!cut) {
                continue;
            }
            // All that the display has of it, at its place and in its size, and nothing beside it.
            const int right = static_cast<int>(std::lround((cut->points.right() + 1) * scale));
            EXPECT_EQ(shownAt(*cut, 0, scale), x);
            EXPECT_EQ(shownAt(*cut, cut->source.right() + 1, scale), right);
            EXPECT_LE(shownAt(*cut, cut->source.left(), scale), std::max(x, 0));
            EXPECT_GE(right, std::min(x + picture.width(), width));
            EXPECT_GE(cut->points.left(), 0);
            EXPECT_LT(cut->points.right(), display.width());
            EXPECT_GE(cut->source.left(), -spriteMargin(scale));
            EXPECT_LT(cut->source.right(), picture.width() + spriteMargin(scale));
        }
    }
    EXPECT_EQ(cutAt({10, 20}, {5, 5}, display, 1), (SpriteCut{{10, 20, 5, 5}, {0, 0, 5, 5}}));
    EXPECT_EQ(cutAt({-2, 197}, {5, 5}, display, 1), (SpriteCut{{0, 197, 3, 3}, {2, 0, 3, 3}}));
    EXPECT_FALSE(cutAt({10, 200}, {5, 5}, display, 1));
}

TEST(PointerTrackTest, KnowsThePlaceOnlyWhileThePointerIsOnADisplay) {
    using Place = PointerTrack::Place;
    PointerTrack track;
    EXPECT_EQ(track.place(), std::nullopt);
    track.move(1, {5, 5});
    EXPECT_EQ(track.place(), std::nullopt);
    track.enter(1);
    EXPECT_EQ(track.place(), (Place{1, {5, 5}}));
    // At a border both displays have a part of it.
    track.enter(2);
    EXPECT_EQ(track.place(), std::nullopt);
    track.move(2, {-3, 7});
    track.move(1, {97, 7});
    EXPECT_EQ(track.place(), (Place{2, {-3, 7}}));
    track.leave(2);
    EXPECT_EQ(track.place(), (Place{1, {97, 7}}));
    track.forget(1);
    EXPECT_EQ(track.place(), std::nullopt);
    track.enter(2);
    EXPECT_EQ(track.place(), (Place{2, {-3, 7}}));
}

TEST(OutputsTest, LiesAsTheCompositorHasPlacedThemWithYUpward) {
    const auto screens = toScreens({
        {.id = 7, .place = {100, 50}, .size = {1280, 720}, .pixels = {1920, 1080}, .rate = 144},
        {.id = 8, .place = {1380, 0}, .size = {1092, 614}, .pixels = {1366, 768}, .rate = 60},
    });
    ASSERT_EQ(screens.size(), 2U);
    EXPECT_EQ(screens[0].frame, (GlobalRect{0, 0, 1280, 720}));
    EXPECT_EQ(screens[0].backingScale, 1.5);
    EXPECT_EQ(screens[0].maximumFramesPerSecond, 144);
    EXPECT_EQ(screens[1].frame, (GlobalRect{1280, 156, 1092, 614}));
    // Of a size that had to be rounded.
    EXPECT_EQ(screens[1].backingScale, 1.25);
    EXPECT_EQ(toGlobal({0, 1080}, screens[0]), (GlobalPoint{0, 0}));
    EXPECT_EQ(toGlobal({15, 30}, screens[1]), (GlobalPoint{1292, 746}));
}

} // namespace
} // namespace vantrel::wayland
