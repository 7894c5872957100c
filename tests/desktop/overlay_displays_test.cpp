#include "support/overlay_fixture.h"

#include <QElapsedTimer>

#include <array>
#include <cmath>
#include <numeric>

#include <xcb/xproto.h>

namespace vantrel::desktop {
namespace {

class TwoMonitorsTest : public OverlayDesktopTest {
protected:
    void SetUp() override {
        setMonitors(watcher, {{0, 0, 500, 600}, {500, 0, 500, 600}});
        startCompositing();
        paintDesktop();
        input.moveTo({250, 300});
    }
};

TEST_F(TwoMonitorsTest, DrawsTheDiscWholeAcrossTheirBorder) {
    start();
    input.moveTo({505, 300});
    const auto disc = blended(yellow, 0.35);
    // Each half once: twice would be more opaque.
    for (const int x : {475, 499, 500, 530}) {
        EXPECT_TRUE(becomes({x, 300}, disc)) << x;
    }
    EXPECT_EQ(pixel({472, 300}), blue);
    EXPECT_EQ(pixel({538, 300}), blue);
    input.moveTo({700, 300});
    EXPECT_TRUE(becomes({700, 300}, disc));
    EXPECT_EQ(pixel({490, 300}), blue);
    EXPECT_TRUE(becomes({730, 300}, disc));
}

TEST_F(TwoMonitorsTest, DrawsOnceWhatTwoOfUnlikeSizeBothShow) {
    setMonitors(watcher, {{0, 0, 500, 600}, {0, 0, 700, 500}});
    start();
    input.moveTo({495, 495});
    const auto disc = blended(yellow, 0.35);
    for (const auto& [x, y] : {PixelPoint{495, 494}, {480, 480}, {475, 515}, {515, 475}}) {
        EXPECT_TRUE(becomes({x, y}, disc)) << x << " " << y;
    }
    EXPECT_EQ(pixel({505, 505}), blue); // neither shows it
    EXPECT_EQ(x11->screens.list()[1].frame, (GlobalRect{0, 100, 700, 500}));
}

TEST_F(TwoMonitorsTest, LeavesNothingBehindAfterManyChanges) {
    start();
    manager->addClick({250, 300}, MouseButton::left);
    runFor(std::chrono::milliseconds(350));
    ASSERT_TRUE(becomes({250, 300}, blended(yellow, 0.35)));
    const std::uint32_t substructure = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(watcher.get(), watcher.root(), XCB_CW_EVENT_MASK, &substructure);
    // With those that are kept ready for clicks, which come a little later.
    ASSERT_TRUE(
        runUntil([&] { return ownWindows().size() > OverlayWindowManager::maximumClicks; }));
    const auto windows = ownWindows().size();
    for (int round = 0; round < 5; ++round) {
        setMonitors(watcher, {{0, 0, 500 - round, 600}});
        ASSERT_TRUE(runUntil([&] { return x11->screens.list().size() == 1; })) << round;
        setMonitors(watcher, {{0, 0, 500, 600}, {500, 0, 500, 600}});
        ASSERT_TRUE(runUntil([&] { return x11->screens.list().size() == 2; })) << round;
        EXPECT_EQ(ownWindows().size(), windows);
    }
    // The mark stays on the screen meanwhile.
    while (const auto event = ownReply(xcb_poll_for_event(watcher.get()))) {
        EXPECT_NE(x11::eventNumber(*event), XCB_UNMAP_NOTIFY);
    }
    // The compositing manager may have missed the last of so many windows until it moves.
    input.moveTo({260, 300});
    EXPECT_TRUE(becomes({260, 300}, blended(yellow, 0.35)));
}

TEST_F(TwoMonitorsTest, DrawsAtTheScaleOfTheDesktop) {
    start();
    EXPECT_TRUE(becomes({250, 300}, blended(yellow, 0.35)));
    constexpr char resources[] = "Xft.dpi:\t192\n";
    xcb_change_property(watcher.get(), XCB_PROP_MODE_REPLACE, watcher.root(),
                        XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 8, sizeof resources - 1,
                        resources);
    watcher.sync();
    EXPECT_TRUE(becomes({250 + 60, 300}, blended(yellow, 0.35)));
    EXPECT_EQ(pixel({250 + 66, 300}), blue);
    EXPECT_EQ(x11->screens.list()[1].frame, (GlobalRect{250, 0, 250, 300}));
    EXPECT_EQ(x11->pointer.location(), (GlobalPoint{125, 150}));
    input.moveTo({700, 110});
    EXPECT_TRUE(becomes({700 - 60, 110}, blended(yellow, 0.35)));
}

class OutputsTest : public OverlayDesktopTest {
protected:
    OutputsTest() : OverlayDesktopTest(PrivateServer::virtualOutputs()) {}

    // Whether the usual gap between frames becomes that of a rate, to a tenth. On a busy machine it
    // does so late, but never for another rate than the one that is kept.
    bool keepsPace(double rate) {
        std::vector<double> times;
        const auto screens = x11->screens.list();
        const auto* fastest = fastestScreen(screens);
        const auto link =
            x11->displayLinks.create(*fastest, frameRateRange(fastest->maximumFramesPerSecond),
                                     [&] { times.push_back(x11->clock.uptime()); });
        return runUntil(
            [&] {
                if (times.size() < 41) {
                    return false;
                }
                std::adjacent_difference(times.begin(), times.end(), times.begin());
                std::nth_element(times.begin() + 1, times.begin() + 20, times.end());
                const double gap = times[20];
                times.clear();
                return std::abs(gap * rate - 1) < 0.1;
            },
            std::chrono::seconds(30));
    }
};

TEST_F(OutputsTest, KeepThePaceOfTheFastestDisplay) {
    setOutputs(watcher, {{{1280, 720}, 60, {0, 0}}, {{1280, 720}, 120, {1280, 0}}});
    connect();
    ASSERT_EQ(x11->screens.list().size(), 2U);
    EXPECT_NEAR(x11->screens.list()[0].maximumFramesPerSecond, 60, 0.5);
    EXPECT_NEAR(x11->screens.list()[1].maximumFramesPerSecond, 120, 0.5);
    EXPECT_EQ(x11->screens.list()[1].frame, (GlobalRect{1280, 0, 1280, 720}));
    EXPECT_TRUE(keepsPace(120));

    // Frames hold up no timer of the loop.
    const auto link = x11->displayLinks.create(x11->screens.list()[0], {60, 60, 60}, [] {});
    QEventLoop loop;
    QElapsedTimer watch;
    watch.start();
    QTimer::singleShot(600, &loop, &QEventLoop::quit);
    loop.exec();
    EXPECT_LT(watch.elapsed(), 900);
    setOutputs(watcher, {{{1280, 720}, 60, {0, 0}}});
    ASSERT_TRUE(runUntil([&] { return x11->screens.list().size() == 1; }));
    EXPECT_TRUE(keepsPace(60));
}

TEST_F(OutputsTest, ComeAndGoWhileTheHighlightIsOn) {
    // On whatever the screen shows without windows. Some compositing managers miss a window that
    // comes while the screen changes its size, until it moves.
    const auto shows = [this](PixelPoint place) {
        return std::ranges::any_of(std::array{0, 1, 2}, [&](int offset) {
            input.moveTo({place.x + offset, place.y});
            return runUntil(
                [&] {
                    const auto around = pixel({place.x + 60, place.y});
                    return channelDistance(pixel(place), blended(yellow, 0.35, around)) <= 3;
                },
                std::chrono::seconds(4));
        });
    };
    setOutputs(watcher, {{{800, 600}, 60, {0, 0}}});
    startCompositing();
    start();
    ASSERT_TRUE(shows({300, 200}));
    for (int round = 0; round < 2; ++round) {
        setOutputs(watcher, {{{800, 600}, 60, {0, 0}}, {{640, 480}, 120, {800, 0}}});
        ASSERT_TRUE(runUntil([&] { return x11->screens.list().size() == 2; }));
        EXPECT_TRUE(shows({1000, 200}));
        setOutputs(watcher, {});
        ASSERT_TRUE(runUntil([&] { return x11->screens.list().empty(); }));
        EXPECT_TRUE(runUntil([&] { return ownMappedWindows() == 0; }));
        setOutputs(watcher, {{{800, 600}, 60, {0, 0}}});
        ASSERT_TRUE(runUntil([&] { return x11->screens.list().size() == 1; }));
        EXPECT_TRUE(shows({300, 200}));
    }
}

} // namespace
} // namespace vantrel::desktop
