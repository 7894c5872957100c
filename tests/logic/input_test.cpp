#include "input/click_monitor.h"
#include "input/hotkey_manager.h"
#include "support/click.h"
#include "testdesk/headless/desktop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantrel {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Looks at what was found when all else of a test has gone.
struct CheckedFaults : headless::Faults {
    ~CheckedFaults() { EXPECT_THAT(list, IsEmpty()); }
};

// One whose bottom-left corner is at (300, 200).
class OwnWindow final : public EventWindow {
public:
    [[nodiscard]] GlobalPoint convertPointToScreen(Point point) const override {
        return {point.x + 300, point.y + 200};
    }
};

class ClickMonitorTest : public testing::Test {
protected:
    ClickMonitorTest() {
        monitor.onClick = [this](MouseButton button, GlobalPoint point) {
            clicks.push_back({button, point});
        };
    }
    CheckedFaults faults;
    headless::EventMonitors monitors{faults};
    std::vector<Click> clicks;
    ClickMonitor monitor{ClickMonitor::operationsOf(monitors)};
    OwnWindow window;
};

TEST_F(ClickMonitorTest, RunsOnceWithBothMonitorsOrWithNone) {
    const auto count = [this] { return monitors.globalCount() + monitors.localCount(); };
    for (auto* refusal : {&monitors.refusesGlobal, &monitors.refusesLocal}) {
        *refusal = true;
        EXPECT_FALSE(monitor.start());
        EXPECT_EQ(count(), 0U);
        *refusal = false;
    }
    const int installs = monitors.installs;
    monitor.stop();
    EXPECT_TRUE(monitor.start());
    EXPECT_TRUE(monitor.start());
    EXPECT_EQ(monitors.installs - installs, 2);
    EXPECT_EQ(monitors.globalCount(), 1U);
    EXPECT_EQ(monitors.localCount(), 1U);
    monitors.send({.type = EventType::leftMouseDown, .locationInWindow = {10, 20}});
    EXPECT_EQ(clicks.size(), 1U);
    monitor.stop();
    monitor.stop();
    EXPECT_EQ(count(), 0U);
}

TEST_F(ClickMonitorTest, ReportsPressesInEveryWindowAtTheirPlaceOnTheDesktop) {
    monitor.start();
    monitors.send({.type = EventType::rightMouseDown, .locationInWindow = {10, 20}});
    monitors.send(
        {.type = EventType::leftMouseDown, .locationInWindow = {10, 20}, .window = &window});
    EXPECT_THAT(clicks, ElementsAre(Click{MouseButton::right, {10, 20}},
                                    Click{MouseButton::left, {310, 220}}));
}

// Two handlers: what the first one gives on reaches the second.
TEST_F(ClickMonitorTest, LetsItsOwnWindowsHaveTheirClicks) {
    int passed = 0;
    monitor.onClick = nullptr;
    monitor.start();
    const auto later = monitors.addLocal(maskOf(EventType::leftMouseDown), [&](const Event& event) {
        ++passed;
        return std::optional(event);
    });
    monitors.send({.type = EventType::leftMouseDown, .window = &window});
    EXPECT_EQ(passed, 1);
    monitors.remove(*later);
}

TEST(ClickMonitor, AHandlerThatOutlivesItDoesNothing) {
    EventMonitors::LocalHandler kept;
    int clicks = 0;
    {
        ClickMonitor monitor({
            .installGlobal = [](EventMask, const auto&) { return std::optional(1); },
            .installLocal =
                [&kept](EventMask, auto handler) {
                    kept = std::move(handler);
                    return std::optional(2);
                },
            .remove = [](ClickMonitor::Token) {},
        });
        monitor.onClick = [&clicks](MouseButton, GlobalPoint) { ++clicks; };
        monitor.start();
    }
    EXPECT_TRUE(kept({.type = EventType::leftMouseDown}).has_value());
    EXPECT_EQ(clicks, 0);
}

constexpr std::uint32_t controlOption = modifier::control | modifier::option;
constexpr headless::Combination highlightKeys{4, controlOption};
constexpr headless::Combination laserKeys{37, controlOption};

class HotkeyManagerTest : public testing::Test {
protected:
    HotkeyManagerTest() {
        manager.onMode = [this](CursorMode mode) { modes.push_back(mode); };
    }
    CheckedFaults faults;
    headless::HotKeys hotKeys{faults};
    std::vector<CursorMode> modes;
    HotkeyManager manager{hotKeys};
    AppPreferences preferences;
};

TEST_F(HotkeyManagerTest, RegistersTheShortcutsThatAreSet) {
    EXPECT_EQ(manager.register_(preferences), std::nullopt);
    EXPECT_EQ(manager.register_(preferences), std::nullopt);
    EXPECT_THAT(hotKeys.registered(), ElementsAre(highlightKeys, laserKeys));
    hotKeys.press(laserKeys);
    hotKeys.press(highlightKeys);
    EXPECT_THAT(modes, ElementsAre(CursorMode::laser, CursorMode::highlight));
    preferences.highlightShortcut.reset();
    EXPECT_EQ(manager.register_(preferences), std::nullopt);
    EXPECT_THAT(hotKeys.registered(), ElementsAre(laserKeys));
    hotKeys.press(laserKeys);
    EXPECT_EQ(modes.back(), CursorMode::laser);
    preferences.laserShortcut.reset();
    EXPECT_EQ(manager.register_(preferences), std::nullopt);
    EXPECT_THAT(hotKeys.registered(), IsEmpty());
}

TEST_F(HotkeyManagerTest, RegistersNeitherOfTwoShortcutsThatAreTheSameKeys) {
    EXPECT_EQ(manager.register_(preferences), std::nullopt);
    preferences.laserShortcut = {4, controlOption, "another text"};
    EXPECT_EQ(manager.register_(preferences), "duplicate");
    EXPECT_THAT(hotKeys.registered(), IsEmpty());
    preferences.laserShortcut->modifiers |= modifier::shift;
    EXPECT_EQ(manager.register_(preferences), std::nullopt);
    EXPECT_EQ(hotKeys.registered().size(), 2U);
}

TEST_F(HotkeyManagerTest, AShortcutThatIsRefusedLeavesTheOtherOneWorking) {
    hotKeys.heldByOthers = {highlightKeys};
    EXPECT_EQ(manager.register_(preferences), "registration");
    EXPECT_FALSE(hotKeys.press(highlightKeys));
    EXPECT_TRUE(hotKeys.press(laserKeys));
    EXPECT_THAT(modes, ElementsAre(CursorMode::laser));
    hotKeys.heldByOthers = {};
    EXPECT_EQ(manager.register_(preferences), std::nullopt);
    EXPECT_TRUE(hotKeys.press(highlightKeys));
}

TEST_F(HotkeyManagerTest, AShortcutMayChangeTheRegistrationsWhileItIsPressed) {
    manager.onMode = [this](CursorMode) {
        preferences.highlightShortcut.reset();
        manager.register_(preferences);
    };
    manager.register_(preferences);
    EXPECT_TRUE(hotKeys.press(highlightKeys));
    EXPECT_THAT(hotKeys.registered(), ElementsAre(laserKeys));
}

} // namespace
} // namespace vantrel
