#include "platform/keys/key_table.h"
#include "platform/x11/cursor_images.h"
#include "platform/x11/desktop_scale.h"
#include "platform/x11/desktop_settings.h"
#include "platform/x11/display_link.h"
#include "platform/x11/event_monitors.h"
#include "platform/x11/pixel_map.h"
#include "platform/x11/raise_policy.h"
#include "platform/x11/screens.h"
#include "platform/x11/sprite_window.h"
#include "platform/x11/xwayland.h"

#include <QRegion>
#include <gtest/gtest.h>

#include <set>

#include <xcb/randr.h>

namespace vantrel::x11 {
namespace {

TEST(PixelMapTest, KeepsScaledDisplaysTouching) {
    const PixelMap alike({{QRect(0, 0, 3840, 2160), 2}, {QRect(3840, 0, 3840, 2160), 2}});
    EXPECT_EQ(alike.frame(1), (GlobalRect{1920, 0, 1920, 1080}));
    EXPECT_EQ(alike.toGlobal(QPoint(7679, 2159)), (GlobalPoint{3839.5, 0.5}));
    // A scaled laptop with plain displays right of it, above it, left of that one, and below it.
    const PixelMap map({{QRect(1920, 1080, 3840, 2160), 2},
                        {QRect(5760, 1580, 1920, 1080), 1},
                        {QRect(1920, 0, 1920, 1080), 1},
                        {QRect(0, 0, 1920, 1080), 1.5},
                        {QRect(1920, 3240, 1920, 1080), 1}});
    EXPECT_EQ(map.frame(0), (GlobalRect{0, 0, 1920, 1080}));
    EXPECT_EQ(map.frame(1), (GlobalRect{1920, -250, 1920, 1080}));
    EXPECT_EQ(map.frame(2), (GlobalRect{0, 1080, 1920, 1080}));
    EXPECT_EQ(map.frame(3), (GlobalRect{-1280, 1440, 1280, 720}));
    EXPECT_EQ(map.frame(4), (GlobalRect{0, -1080, 1920, 1080}));
    // On both sides of the border the same point.
    EXPECT_EQ(map.toGlobal(QPoint(5759, 1580)).x + 0.5, map.toGlobal(QPoint(5760, 1580)).x);
    EXPECT_EQ(map.toGlobal(QPoint(5759, 1580)).y, map.toGlobal(QPoint(5760, 1580)).y);
}

TEST(PixelMapTest, AnswersBesideAndWithoutDisplays) {
    const PixelMap apart({{QRect(0, 0, 100, 100), 2}, {QRect(500, 0, 100, 100), 1}});
    EXPECT_EQ(apart.frame(1).x, 250);
    EXPECT_EQ(apart.toGlobal(QPoint(120, 0)), (GlobalPoint{60, 50}));
    EXPECT_EQ(apart.toGlobal(QPoint(480, 0)), (GlobalPoint{230, 50}));
    EXPECT_EQ(PixelMap().toGlobal(QPoint(3, 4)), (GlobalPoint{3, -4}));
}

TEST(DesktopScaleTest, FollowsTheSettingsThatProgramsFollow) {
    struct Case {
        ScaleSettings settings;
        double first, second;
    };
    const Case cases[] = {
        {{}, 1, 1},
        {{.fontDpi = 144}, 1.5, 1.5},
        {{.windowScale = 2}, 2, 2},
        {{.fontDpi = 192, .windowScale = 2}, 2, 2},
        {{.fontDpi = 96, .screenFactors = "A=1.25;B=2"}, 1.25, 2},
        {{.screenFactors = "2;1"}, 2, 1},
        {{.fontDpi = 144, .screenFactors = "A=0;B=junk"}, 1.5, 1.5},
        {{.fontDpi = 144, .globalFactor = 2}, 3, 3},
        {{.fontDpi = 1e9}, 8, 8},
        {{.fontDpi = 1}, 0.5, 0.5},
    };
    for (const auto& [settings, first, second] : cases) {
        EXPECT_EQ(toScale(settings, "A", 0), first);
        EXPECT_EQ(toScale(settings, "B", 1), second);
    }
}

TEST(DesktopScaleTest, ReadsTheResourceDatabase) {
    EXPECT_EQ(fontDpiOf("Xft.antialias:\t1\nXft.dpi:\t120\nXcursor.size: 24"), 120);
    EXPECT_EQ(fontDpiOf("Xft.dpi: junk\n"), std::nullopt);
    EXPECT_EQ(fontDpiOf("Xft.dpi: 120dpi\n"), std::nullopt);
    EXPECT_EQ(fontDpiOf("XTerm*Xft.dpi: 12"), std::nullopt);
    EXPECT_EQ(fontDpiOf("Xft.dpi:-96"), std::nullopt);
    EXPECT_EQ(fontDpiOf(""), std::nullopt);
}

std::string number(std::size_t value) {
    return {static_cast<char>(value), '\0', '\0', '\0'};
}
std::string padded(const std::string& text) {
    return text + std::string((4 - text.size() % 4) % 4, '\0');
}
std::string entryHead(char type, const std::string& name) {
    return std::string{type, '\0', static_cast<char>(name.size()), '\0'} + padded(name) + number(0);
}
std::string textEntry(const std::string& name, const std::string& value) {
    return entryHead(1, name) + number(value.size()) + padded(value);
}
std::string integerEntry(const std::string& name, std::size_t value) {
    return entryHead(0, name) + number(value);
}
std::string settingsBlock(const std::vector<std::string>& entries) {
    std::string block = number(0) + number(1) + number(entries.size());
    for (const auto& entry : entries) {
        block += entry;
    }
    return block;
}

TEST(DesktopSettingsTest, AreReadFromTheBlockAndNothingBeyondIt) {
    const auto block = settingsBlock({entryHead(2, "A/Color") + std::string(8, '\7'),
                                      textEntry("Net/ThemeName", "Yaru"),
                                      integerEntry("Gdk/WindowScalingFactor", 2)});
    EXPECT_EQ(integerSetting(block, "Gdk/WindowScalingFactor"), 2);
    EXPECT_EQ(textSetting(block, "Net/ThemeName"), "Yaru");
    EXPECT_EQ(textSetting(block, "Gdk/WindowScalingFactor"), std::nullopt);
    EXPECT_EQ(integerSetting(block, "Net/ThemeName"), std::nullopt);
    EXPECT_EQ(integerSetting(block, "A/Color"), std::nullopt);
    EXPECT_EQ(integerSetting(block, "Gtk/Other"), std::nullopt);
    for (std::size_t length = 0; length < block.size(); ++length) {
        EXPECT_EQ(
            integerSetting(std::string_view(block).substr(0, length), "Gdk/WindowScalingFactor"),
            std::nullopt);
    }
    EXPECT_EQ(integerSetting(std::string(12, '\xFF'), "Gtk/Other"), std::nullopt);
}

TEST(CursorThemeTest, IsWhatTheFirstSourceSaysThatHasAWordOnIt) {
    const auto block = settingsBlock(
        {textEntry("Gtk/CursorThemeName", "Yaru"), integerEntry("Gtk/CursorThemeSize", 48)});
    const auto blank = settingsBlock(
        {textEntry("Gtk/CursorThemeName", ""), integerEntry("Gtk/CursorThemeSize", 0)});
    const std::string_view resources = "Xcursor.theme:\tBreeze\nXcursor.size:\t36\nXft.dpi:\t144";
    struct Case {
        CursorSources sources;
        CursorTheme theme;
    };
    const Case cases[] = {
        {{block, resources, "DMZ-White", "24", {}}, {"Yaru", 48}},
        {{blank, resources, "DMZ-White", "24", {}}, {"Breeze", 36}},
        {{"", "Xft.dpi: 144", "DMZ-White", "24", {}}, {"DMZ-White", 24}},
        {{"", "Xft.dpi: 144", "", "", {1920, 1080}}, {"", 32}},
        {{"", "Xcursor.size: junk", "", "-1", {1920, 1080}}, {"", 22}},
        {{"", "Xcursor.size: 1e9", "", "", {1920, 1080}}, {"", 512}},
        {{"", "", "", "", {}}, {"", 1}},
    };
    for (const auto& [sources, theme] : cases) {
        EXPECT_EQ(chooseCursorTheme(sources), theme);
    }
}

TEST(ScreensTest, TakesTheRateFromTheMode) {
    EXPECT_NEAR(refreshRate(148'500'000, 2200, 1125, 0), 60, 1e-9);
    EXPECT_NEAR(refreshRate(74'250'000, 2200, 1125, XCB_RANDR_MODE_FLAG_INTERLACE), 60, 1e-9);
    EXPECT_NEAR(refreshRate(148'500'000, 2200, 1125, XCB_RANDR_MODE_FLAG_DOUBLE_SCAN), 30, 1e-9);
    EXPECT_EQ(refreshRate(0, 0, 0, 0), 0);
}

TEST(PaceCheckTest, TellsThePaceOfTheDisplayFromAnotherAndFromNone) {
    using Verdict = PaceCheck::Verdict;
    const auto judge = [](double promised, std::uint64_t period, std::uint64_t step) {
        PaceCheck check(promised);
        auto verdict = Verdict::blank;
        for (std::uint64_t i = 0; i < 100; ++i) {
            verdict = check.add(1000 + i * step, 5'000'000 + i * step * period);
        }
        return verdict;
    };
    EXPECT_EQ(judge(60, 16'667, 1), Verdict::blank);
    EXPECT_EQ(judge(120, 16'667, 1), Verdict::useless);
    EXPECT_EQ(judge(120, 8'333, 1), Verdict::blank);
    EXPECT_EQ(judge(120, 8'333, 2), Verdict::blank); // blanks that were slept through still count
    EXPECT_EQ(judge(60, 0, 1), Verdict::useless);
    EXPECT_EQ(judge(60, 16'667, 0), Verdict::useless);
}

TEST(PaceCheckTest, ForgivesACounterThatStartsAnew) {
    using Verdict = PaceCheck::Verdict;
    PaceCheck check(60);
    for (std::uint64_t i = 1; i < 200; ++i) {
        const bool again = i % 20 == 0;
        EXPECT_EQ(check.add(i % 20, i * 16'667), again ? Verdict::none : Verdict::blank) << i;
    }
}

TEST(FingersTest, PressOnceWhenTheFirstComesDown) {
    Fingers fingers;
    EXPECT_TRUE(fingers.down(10, 1));
    EXPECT_FALSE(fingers.down(10, 2));
    EXPECT_FALSE(fingers.down(11, 3));
    fingers.up(3);
    fingers.deviceGone(11);
    fingers.up(1);
    EXPECT_FALSE(fingers.down(10, 4));
    fingers.deviceGone(10); // whose fingers are never lifted
    EXPECT_TRUE(fingers.down(12, 5));
    fingers.up(5);
    EXPECT_TRUE(fingers.down(12, 6));
}

TEST(RaisePolicyTest, YieldsToAWindowThatAnswersEveryTime) {
    RaisePolicy policy;
    double now = 0;
    int raises = 0;
    for (; raises < 100 && policy.shouldRaise(7, now); ++raises) {
        now += 0.6;
    }
    EXPECT_EQ(raises, RaisePolicy::answersAllowed);
    for (int i = 0; i < 100; ++i) {
        EXPECT_FALSE(policy.shouldRaise(7, now += 5));
    }
    EXPECT_TRUE(policy.shouldRaise(8, now));
    // It has left it at that for a while, or was closed and opened again.
    EXPECT_TRUE(policy.shouldRaise(7, now + 11));
    policy.forget(7);
    EXPECT_TRUE(policy.shouldRaise(7, now + 12));
    for (int i = 0; i < 100; ++i) {
        EXPECT_TRUE(policy.shouldRaise(9, 1.5 * i)) << "raised now and then";
    }
}

TEST(CutOutTest, KeepsOfEveryPixelsRowsTheShareThatItIsOpaque) {
    for (const int alpha : {0, 1, 26, 89, 230, 255}) {
        QImage picture(3, 255, QImage::Format_ARGB32_Premultiplied);
        picture.fill(qRgba(0, 0, 0, alpha));
        std::vector<xcb_rectangle_t> cut;
        cutOut(picture, cut);
        EXPECT_EQ(cut.size(), static_cast<std::size_t>(alpha));
        int last = 0;
        for (const auto& row : cut) {
            EXPECT_EQ(row.width, 3);
            EXPECT_LE(row.y - last, 2 * 255 / alpha + 1);
            last = row.y;
        }
    }
}

TEST(ScreensTest, GiveEveryPixelToOneDisplay) {
    const std::vector<std::vector<QRect>> layouts{
        {{0, 0, 800, 600}, {800, 0, 640, 480}},
        {{0, 0, 1366, 768}, {0, 0, 1280, 800}},
        {{0, 0, 800, 600}, {0, 0, 800, 600}, {100, 100, 10, 10}},
        {{100, 100, 50, 50}, {0, 0, 300, 300}, {200, 200, 200, 200}},
    };
    for (const auto& layout : layouts) {
        const auto parts = uncovered(layout);
        QRegion all;
        for (std::size_t i = 0; i < layout.size(); ++i) {
            QRegion own;
            for (const auto& part : parts[i]) {
                EXPECT_FALSE(own.intersects(part));
                own += part;
            }
            EXPECT_EQ(own, QRegion(layout[i]) - all);
            all += layout[i];
        }
    }
}

TEST(StalePointerFilterTest, ThePointerIsKnownOverAWindowAndWhileADragIsFollowedOutOfIt) {
    struct Step {
        int x;
        bool inside;
        bool held;
        bool known;
    };
    const Step steps[] = {
        {0, false, false, false},                             // not seen yet
        {50, true, false, true},   {50, false, false, false}, // it has left there
        {20, true, true, true},    {90, false, true, true},   // dragged beyond the window
        {90, false, true, true},                              // resting there
        {90, false, false, false}, {30, true, true, true},
        {30, false, true, false}, // the compositor took the drag over
        {31, true, false, true},
    };
    StalePointerFilter filter;
    for (const auto& [x, inside, held, known] : steps) {
        const PointerSample sample{
            .place = QPoint(x, 0), .inside = inside, .held = held, .focused = true};
        EXPECT_EQ(filter.accepts(sample, 0), known) << "at " << x;
        auto unfocused = sample;
        unfocused.focused = false;
        EXPECT_FALSE(StalePointerFilter().accepts(unfocused, 0));
    }
}

TEST(StalePointerFilterTest, ThePointerIsNotKnownAnyMoreWhenNothingWasHeardOfItForLong) {
    StalePointerFilter filter;
    PointerSample sample{.place = QPoint(10, 0), .inside = true, .focused = true};
    EXPECT_TRUE(filter.accepts(sample, 100));
    EXPECT_TRUE(filter.accepts(sample, 102.9));
    EXPECT_FALSE(filter.accepts(sample, 103));
    sample.held = true;
    EXPECT_TRUE(filter.accepts(sample, 200));
    EXPECT_FALSE(filter.accepts(sample, 203));
    sample.place.rx() += 1;
    EXPECT_TRUE(filter.accepts(sample, 204));
}

TEST(KeyTable, HasAPlaceOfItsOwnForEveryKeyOfAShortcut) {
    // Modifier keys, and codes that no key has.
    const std::set<std::uint32_t> none{0x34, 0x36, 0x37, 0x38, 0x39, 0x3A, 0x3B, 0x3C, 0x3D,
                                       0x3E, 0x3F, 0x42, 0x44, 0x46, 0x4D, 0x6C, 0x70, 0x7F};
    for (std::uint32_t code = 0; code <= 0x82; ++code) {
        const auto keycode = keycodeOf(code);
        ASSERT_EQ(keycode.has_value(), !none.contains(code)) << code;
        EXPECT_TRUE(!keycode || virtualKeyCodeOf(*keycode) == code) << code;
    }
    EXPECT_EQ(keycodeOf(53), 9);                   // Escape
    EXPECT_EQ(keycodeOf(51), 22);                  // Backspace
    EXPECT_EQ(keycodeOf(22), 15);                  // the digit six
    EXPECT_EQ(virtualKeyCodeOf(50), std::nullopt); // left Shift
    EXPECT_EQ(virtualKeyCodeOf(0), std::nullopt);
}

TEST(MonitorListTest, HearsOnWhenTheNumbersGoRound) {
    MonitorList monitors;
    int heard = 0;
    monitors.add(
        maskOf(EventType::mouseMoved), [&](const Event&) { ++heard; }, 10);
    for (const std::uint32_t number : {9U, 11U, 11U + (1U << 31U)}) {
        monitors.send({.type = EventType::mouseMoved}, number);
    }
    EXPECT_EQ(heard, 2);
}

} // namespace
} // namespace vantrel::x11
