#include "overlay/overlay_window_manager.h"
#include "support/headless_fixture.h"

namespace vantrel {
namespace {

using headless::SpriteCounts;

class OverlayManagerTest : public HeadlessTest {
protected:
    void SetUp() override {
        desktop.screens.set({screen(1, {0, 0, 800, 600}), screen(2, {800, 0, 640, 480}, 120, 2)});
        desktop.pointer.place = {400, 300};
        manager = std::make_unique<OverlayWindowManager>(desktop);
    }
    void TearDown() override {
        manager.reset();
        EXPECT_EQ(desktop.overlayWindows.windows().size(), 0U);
        EXPECT_EQ(desktop.eventMonitors.globalCount() + desktop.eventMonitors.localCount(), 0U);
        HeadlessTest::TearDown();
    }

    void show(CursorMode mode) { manager->apply(mode, preferences); }
    void click(GlobalPoint point = {400, 300}, MouseButton button = MouseButton::left) {
        manager->addClick(point, button);
    }
    const std::vector<headless::OverlayWindow*>& windows() {
        return desktop.overlayWindows.windows();
    }
    std::size_t clickLayers(std::size_t window) {
        return windows()[window]->rootLayer()->sublayers().size() - 1;
    }
    bool cursorHidden() { return windows()[0]->rootLayer()->sublayers()[0]->hidden(); }
    // How often the screen is brought up to date by an action.
    int flushesOf(auto action) {
        const int before = desktop.transaction.flushes;
        action();
        return desktop.transaction.flushes - before;
    }

    AppPreferences preferences;
    std::unique_ptr<OverlayWindowManager> manager;
};

TEST_F(OverlayManagerTest, CoversEachScreenWhileOnAndKeepsTheWindowsBetweenModes) {
    show(CursorMode::off);
    EXPECT_TRUE(windows().empty());
    EXPECT_EQ(desktop.eventMonitors.installs, 0);
    show(CursorMode::highlight);
    ASSERT_EQ(windows().size(), 2U);
    EXPECT_EQ(windows()[0]->frame(), (GlobalRect{0, 0, 800, 600}));
    EXPECT_EQ(windows()[1]->frame(), (GlobalRect{800, 0, 640, 480}));
    EXPECT_TRUE(windows()[0]->isFront());
    EXPECT_EQ(desktop.displayLinks.count(), 1U);
    EXPECT_EQ(desktop.eventMonitors.globalCount(), 1U);
    EXPECT_EQ(desktop.eventMonitors.localCount(), 1U);

    const auto before = windows();
    EXPECT_EQ(flushesOf([&] { show(CursorMode::laser); }), 1);
    EXPECT_EQ(windows(), before);

    show(CursorMode::off);
    EXPECT_TRUE(windows().empty());
    EXPECT_EQ(desktop.displayLinks.count(), 0U);
    EXPECT_EQ(desktop.eventMonitors.globalCount() + desktop.eventMonitors.localCount(), 0U);
}

TEST_F(OverlayManagerTest, PacesFramesByTheFastestScreen) {
    show(CursorMode::highlight);
    EXPECT_EQ(desktop.displayLinks.lastScreenId, 2U);
    EXPECT_EQ(desktop.displayLinks.lastRange, (FrameRateRange{60, 120, 120}));

    desktop.screens.set({screen(1, {0, 0, 800, 600}, 60, 2), screen(2, {800, 0, 640, 480}, 75)});
    EXPECT_EQ(desktop.displayLinks.lastScreenId, 2U);
    desktop.screens.set({screen(1, {0, 0, 800, 600}), screen(2, {800, 0, 640, 480})});
    EXPECT_EQ(desktop.displayLinks.lastScreenId, 1U);

    desktop.screens.set({screen(1, {0, 0, 800, 600}, 0)});
    EXPECT_EQ(desktop.displayLinks.lastRange, (FrameRateRange{60, 60, 60}));
    desktop.screens.set({screen(1, {0, 0, 800, 600}, 30)});
    EXPECT_EQ(desktop.displayLinks.lastRange, (FrameRateRange{30, 30, 30}));
}

TEST_F(OverlayManagerTest, FollowsScreensThatComeAndGo) {
    show(CursorMode::highlight);
    for (int round = 0; round < 3; ++round) {
        desktop.screens.set({screen(1, {0, 0, 800, 600})});
        EXPECT_EQ(windows().size(), 1U);
        desktop.screens.set({});
        EXPECT_TRUE(windows().empty());
        EXPECT_EQ(desktop.displayLinks.count(), 0U);
        desktop.eventMonitors.send({.type = EventType::mouseMoved});
        desktop.screens.set({screen(1, {0, 0, 800, 600}), screen(2, {800, 0, 640, 480})});
        EXPECT_EQ(windows().size(), 2U);
        EXPECT_EQ(desktop.displayLinks.count(), 1U);
    }
    EXPECT_EQ(desktop.eventMonitors.globalCount(), 1U);
    // A panel is nothing to the overlays.
    const auto before = windows();
    auto screens = desktop.screens.list();
    screens[0].visibleFrame.height -= 30;
    desktop.screens.set(screens);
    EXPECT_EQ(windows(), before);
    manager->apply(CursorMode::off, preferences);
    desktop.screens.set({screen(1, {0, 0, 800, 600})});
    EXPECT_TRUE(windows().empty());
}

TEST_F(OverlayManagerTest, DrawsOnlyWhatChanged) {
    show(CursorMode::highlight);
    const auto shown = desktop.overlayWindows.counts();
    EXPECT_EQ(shown, (SpriteCounts{.uploads = 1, .redraws = 0, .places = 1}));

    EXPECT_EQ(flushesOf([&] { desktop.frame(); }), 0);
    EXPECT_EQ(flushesOf([&] { show(CursorMode::highlight); }), 0);

    desktop.pointer.place = {410, 300};
    EXPECT_EQ(flushesOf([&] { desktop.eventMonitors.send({.type = EventType::mouseMoved}); }), 1);
    EXPECT_EQ(flushesOf([&] { desktop.frame(); }), 0);
    EXPECT_EQ(desktop.overlayWindows.counts(),
              (SpriteCounts{.uploads = 1, .redraws = 0, .places = 2}));

    preferences.click.style = ClickStyle::pulse;
    preferences.laserShortcut.reset();
    show(CursorMode::highlight);
    EXPECT_EQ(desktop.overlayWindows.counts().uploads, 1);
    preferences.highlight.opacity = 0.5;
    show(CursorMode::highlight);
    EXPECT_EQ(desktop.overlayWindows.counts().uploads, 2);
}

TEST_F(OverlayManagerTest, HidesTheRestingHighlightUntilSomethingHappens) {
    preferences.highlight.idleHide = true;
    show(CursorMode::highlight);
    desktop.frame(2.9);
    EXPECT_FALSE(cursorHidden());
    EXPECT_EQ(flushesOf([&] { desktop.frame(0.2); }), 1);
    EXPECT_TRUE(cursorHidden());
    EXPECT_EQ(flushesOf([&] { desktop.frame(0.2); }), 0);

    desktop.pointer.place = {401, 300};
    desktop.frame();
    EXPECT_FALSE(cursorHidden());
    desktop.frame(3.1);
    EXPECT_TRUE(cursorHidden());

    preferences.click.left = false;
    show(CursorMode::highlight);
    click();
    EXPECT_FALSE(cursorHidden());
    EXPECT_EQ(clickLayers(0), 0U);

    desktop.frame(3.1);
    show(CursorMode::laser);
    desktop.frame(100);
    EXPECT_FALSE(cursorHidden());
    show(CursorMode::highlight);
    EXPECT_FALSE(cursorHidden());
}

TEST_F(OverlayManagerTest, HidesEitherMarkWhileThePointerIsNotKnown) {
    desktop.pointer.known = false;
    for (const auto mode : {CursorMode::highlight, CursorMode::laser}) {
        show(mode);
        EXPECT_TRUE(cursorHidden());
        EXPECT_EQ(desktop.overlayWindows.counts().places, 0);
    }
    desktop.pointer.known = true;
    EXPECT_EQ(flushesOf([&] { desktop.frame(); }), 1);
    EXPECT_FALSE(cursorHidden());
    EXPECT_GT(windows()[0]->screenshot().pixelColor(400, 300).alpha(), 0);

    desktop.pointer.known = false;
    EXPECT_EQ(flushesOf([&] { desktop.frame(); }), 1);
    EXPECT_TRUE(cursorHidden());
    EXPECT_EQ(flushesOf([&] { desktop.frame(); }), 0);
    desktop.pointer.known = true;
    desktop.pointer.place = {200, 100};
    EXPECT_EQ(flushesOf([&] { desktop.eventMonitors.send({.type = EventType::mouseMoved}); }), 1);
    EXPECT_FALSE(cursorHidden());
    EXPECT_EQ(windows()[0]->screenshot().pixelColor(400, 300).alpha(), 0);
}

TEST_F(OverlayManagerTest, SendsAgainWhatTheServerHadNoRoomFor) {
    desktop.overlayWindows.refusesUploads = true;
    show(CursorMode::highlight);
    EXPECT_EQ(desktop.overlayWindows.counts().places, 0);
    desktop.overlayWindows.refusesUploads = false;
    desktop.pointer.place = {200, 100};
    desktop.frame();
    EXPECT_GT(windows()[0]->screenshot().pixelColor(200, 500).alpha(), 0);
}

TEST_F(OverlayManagerTest, ThePointersReturnIsActivityEvenToWhereItLeft) {
    preferences.highlight.idleHide = true;
    show(CursorMode::highlight);
    desktop.pointer.known = false;
    desktop.frame(2);
    click();
    desktop.frame(2);
    EXPECT_TRUE(cursorHidden());
    desktop.frame(2);
    desktop.pointer.known = true;
    desktop.frame();
    EXPECT_FALSE(cursorHidden());
    desktop.frame(2.9);
    EXPECT_FALSE(cursorHidden());
    desktop.frame(0.2);
    EXPECT_TRUE(cursorHidden());
}

TEST_F(OverlayManagerTest, PlaysAClickAndDrawsOnceMoreAfterItsEnd) {
    show(CursorMode::highlight);
    click();
    EXPECT_EQ(clickLayers(0), 1U);
    EXPECT_EQ(clickLayers(1), 0U);
    desktop.frame();
    const int redraws = desktop.overlayWindows.counts().redraws;
    desktop.frame();
    EXPECT_EQ(desktop.overlayWindows.counts().redraws, redraws + 1) << "in every frame";
    desktop.frame(0.12);
    EXPECT_EQ(clickLayers(0), 1U);
    EXPECT_EQ(flushesOf([&] { desktop.frame(0.16); }), 1);
    EXPECT_EQ(clickLayers(0), 0U);
    EXPECT_EQ(flushesOf([&] { desktop.frame(1); }), 0);
}

TEST_F(OverlayManagerTest, PlaysOnlyTheClicksThatWereAskedFor) {
    struct Case {
        CursorMode mode;
        ClickSettings settings;
        MouseButton button;
        std::size_t layers;
    };
    const Case cases[] = {
        {CursorMode::highlight, {ClickStyle::ripple, true, false}, MouseButton::left, 1},
        {CursorMode::highlight, {ClickStyle::ripple, true, false}, MouseButton::right, 0},
        {CursorMode::highlight, {ClickStyle::pulse, false, true}, MouseButton::right, 1},
        {CursorMode::highlight, {ClickStyle::none, true, true}, MouseButton::left, 0},
        {CursorMode::laser, {ClickStyle::ripple, true, true}, MouseButton::left, 0},
    };
    for (const auto& [mode, settings, button, layers] : cases) {
        show(CursorMode::off);
        preferences.click = settings;
        show(mode);
        click({400, 300}, button);
        EXPECT_EQ(clickLayers(0), layers);
    }
}

TEST_F(OverlayManagerTest, KeepsEightClicksAndForgetsThemWithTheMode) {
    show(CursorMode::highlight);
    for (int i = 0; i < 9; ++i) {
        click({i == 0 ? 1000 : 80.0 * i, 300});
        desktop.clock.advance(0.001);
    }
    EXPECT_EQ(clickLayers(0), 8U);
    EXPECT_EQ(clickLayers(1), 0U); // the first, on the other screen, was dropped
    show(CursorMode::laser);
    EXPECT_EQ(clickLayers(0), 0U);
    show(CursorMode::highlight);
    click();
    manager->stop();
    EXPECT_TRUE(windows().empty());
    show(CursorMode::highlight);
    EXPECT_EQ(clickLayers(0), 0U);
}

TEST_F(OverlayManagerTest, PlaysAClickAtABorderOnBothScreens) {
    show(CursorMode::highlight);
    click({847, 200});
    EXPECT_EQ(clickLayers(0), 1U);
    EXPECT_EQ(clickLayers(1), 1U);
    desktop.frame(0.31);
    click({848, 200});
    EXPECT_EQ(clickLayers(0), 0U);
    EXPECT_EQ(clickLayers(1), 1U);
}

TEST_F(OverlayManagerTest, GoesOnWithoutMonitorsAndTriesAgain) {
    desktop.eventMonitors.refusesGlobal = true;
    show(CursorMode::highlight);
    EXPECT_EQ(desktop.eventMonitors.globalCount(), 0U);
    desktop.pointer.place = {1, 2};
    EXPECT_EQ(flushesOf([&] { desktop.frame(); }), 1);
    desktop.eventMonitors.refusesGlobal = false;
    show(CursorMode::highlight);
    EXPECT_EQ(desktop.eventMonitors.globalCount(), 1U);
    EXPECT_EQ(desktop.eventMonitors.localCount(), 1U);
}

} // namespace
} // namespace vantrel
