#include "overlay_fixture.h"

#include "platform/layers/painter.h"

#include <QPainter>

#include <utility>

namespace vantrel::desktop {
namespace {

// The tree of an overlay on the whole screen, painted over the blue desktop.
QImage expectedScreen(CursorMode mode, const AppPreferences& preferences, PixelPoint pointer) {
    OverlayView view({0, 0, 1000, 600});
    view.configure(mode, preferences);
    view.cursorLayer().setPosition({static_cast<double>(pointer.x), 600.0 - pointer.y});
    const auto effect = paintLayer(view.rootLayer(), {1000, 600}, 1, 0);
    QImage screen(effect.size(), QImage::Format_RGB32);
    screen.fill(0xFF000000U | blue);
    QPainter(&screen).drawImage(0, 0, effect);
    return screen;
}

int largestDifference(const Picture& picture, const QImage& expected) {
    int most = 0;
    for (int y = 0; y < picture.area.height; ++y) {
        for (int x = 0; x < picture.area.width; ++x) {
            const PixelPoint place{picture.area.x + x, picture.area.y + y};
            most = std::max(most,
                            channelDistance(picture.at(place), expected.pixel(place.x, place.y)));
        }
    }
    return most;
}

TEST_F(OverlayDesktopTest, ShowsWhatTheReferencePainterPaints) {
    startCompositing();
    paintDesktop();
    start();
    constexpr PixelPoint pointer{420, 310};
    input.moveTo(pointer);
    const auto agrees = [&](CursorMode mode) {
        show(mode);
        const auto expected = expectedScreen(mode, preferences, pointer);
        const PixelRect area{pointer.x - 80, pointer.y - 80, 160, 160};
        return runUntil(
            [&] { return largestDifference(captureScreen(watcher, area), expected) <= 3; });
    };
    for (const auto style : allCases<HighlightStyle>()) {
        preferences.highlight.style = style;
        preferences.highlight.diameter = style == HighlightStyle::ring ? 91 : 64;
        EXPECT_TRUE(agrees(CursorMode::highlight)) << nameOf(style);
    }
    for (const auto glow : allCases<GlowStrength>()) {
        preferences.laser.glow = glow;
        EXPECT_TRUE(agrees(CursorMode::laser)) << nameOf(glow);
    }
}

TEST_F(OverlayDesktopTest, FollowsThePointerToEveryEdge) {
    startCompositing();
    paintDesktop();
    start();
    const auto disc = blended(yellow, 0.35);
    for (const PixelPoint place : {PixelPoint{500, 300}, PixelPoint{0, 0}, PixelPoint{999, 599},
                                   PixelPoint{0, 599}, PixelPoint{700, 20}}) {
        input.moveTo(place);
        EXPECT_TRUE(becomes(place, disc));
    }
    EXPECT_EQ(pixel({500, 300}), blue);
    EXPECT_EQ(pixel({0, 0}), blue);
}

TEST_F(OverlayDesktopTest, LetsClicksThroughFromTheStartAndAfterAChangeOfDisplays) {
    startCompositing();
    ClientWindow beneath(server.display(), {.area = {0, 0, 1000, 600}});
    input.moveTo({500, 300});
    start();
    ASSERT_TRUE(runUntil([&] { return ownMappedWindows() > 0; }));
    const auto clickArrives = [&](PixelPoint place) {
        const auto before = beneath.events().size();
        input.moveTo(place);
        runFor(std::chrono::milliseconds(40));
        input.click();
        return runUntil([&] { return beneath.events().size() >= before + 2; });
    };
    EXPECT_TRUE(clickArrives({500, 300}));
    for (int round = 0; round < 3; ++round) {
        setMonitors(watcher, {{0, 0, 400, 600}, {400, 0, 600, 600}});
        EXPECT_TRUE(clickArrives({401, 100 + 50 * round}));
        setMonitors(watcher, {{0, 0, 1000, 600}});
        EXPECT_TRUE(clickArrives({100, 100 + 50 * round}));
    }
}

TEST_F(OverlayDesktopTest, MapsNothingWhileOffAndKeepsItsWindowsReady) {
    startCompositing();
    input.moveTo({500, 300});
    start(CursorMode::off);
    std::vector<xcb_window_t> ready;
    for (int round = 0; round < 3; ++round) {
        EXPECT_TRUE(runUntil([&] { return ownMappedWindows() == 0; }));
        paintDesktop(); // a new window above all others
        EXPECT_TRUE(becomes({500, 300}, blue));
        const auto former = std::exchange(ready, ownWindows());
        EXPECT_FALSE(ready.empty());
        // The compositing manager may have become ready in the first round.
        if (round > 1) {
            EXPECT_THAT(ready, testing::UnorderedElementsAreArray(former));
        }
        show(CursorMode::highlight);
        EXPECT_TRUE(becomes({500, 300}, blended(yellow, 0.35)));
        show(CursorMode::off);
        EXPECT_TRUE(becomes({500, 300}, blue));
    }
}

TEST_F(OverlayDesktopTest, PlaysARingThatGrowsFadesAndIsGone) {
    startCompositing();
    paintDesktop();
    input.moveTo({300, 300});
    preferences.click.style = ClickStyle::pulse;
    start();
    ASSERT_TRUE(becomes({300, 300}, blended(yellow, 0.35)));
    const auto quiet = captureScreen(watcher, {200, 200, 200, 200});
    int rings = 0;
    for (int round = 0; round < 3; ++round) {
        manager->addClick({300, 300}, false);
        // Left of the disc only the ring can be.
        rings += runUntil([&] { return pixel({264, 300}) != blue; }) ? 1 : 0;
        EXPECT_TRUE(becomes({264, 300}, blue));
    }
    EXPECT_EQ(rings, 3);
    EXPECT_TRUE(runUntil([&] { return captureScreen(watcher, quiet.area) == quiet; }));
    show(CursorMode::laser);
    manager->addClick({300, 300}, false);
    show(CursorMode::highlight);
    manager->addClick({300, 300}, false);
    show(CursorMode::off);
    show(CursorMode::highlight);
    EXPECT_TRUE(becomes({264, 300}, blue));
}

TEST_F(OverlayDesktopTest, IsShapedWhereNothingBlends) {
    paintDesktop();
    input.moveTo({300, 300});
    preferences.click.style = ClickStyle::pulse;
    start();
    EXPECT_TRUE(becomes({300, 300}, yellow));
    EXPECT_EQ(pixel({300 - 30, 300 - 30}), blue); // the corner of the disc's box
    EXPECT_TRUE(becomes({330, 300}, yellow));
    preferences.highlight.style = HighlightStyle::ring;
    show(CursorMode::highlight);
    EXPECT_TRUE(becomes({320, 300}, blue));
    EXPECT_TRUE(becomes({331, 300}, yellow));
    preferences.highlight.style = HighlightStyle::glow;
    show(CursorMode::highlight);
    EXPECT_TRUE(becomes({300, 300}, yellow, 8));
    EXPECT_EQ(pixel({331, 300}), blue);
    manager->addClick({300, 300}, false);
    EXPECT_TRUE(becomes({265, 300}, yellow));
    EXPECT_TRUE(becomes({265, 300}, blue));
    // Two at once, of which neither shows the other's.
    preferences.click.style = ClickStyle::ripple;
    show(CursorMode::highlight);
    manager->addClick({200, 300}, false);
    runFor(std::chrono::milliseconds(80));
    manager->addClick({500, 300}, false);
    int circles = 0;
    EXPECT_FALSE(runUntil(
        [&] {
            const auto row = captureScreen(watcher, {500, 300, 48, 1});
            const auto edges = std::count_if(row.pixels.begin() + 1, row.pixels.end(),
                                             [&](const std::uint32_t& color) {
                                                 return (color == blue) != ((&color)[-1] == blue);
                                             });
            circles = std::max(circles, static_cast<int>(edges) / 2);
            return circles > 1;
        },
        std::chrono::milliseconds(250)));
    EXPECT_EQ(circles, 1);
    show(CursorMode::laser);
    EXPECT_TRUE(becomes({303, 300}, 0xFF453A, 8));
    EXPECT_EQ(pixel({315, 300}), blue);
}

TEST_F(OverlayDesktopTest, SwitchesWhenACompositingManagerComesOrGoes) {
    paintDesktop();
    input.moveTo({300, 300});
    start();
    EXPECT_TRUE(becomes({300, 300}, yellow));
    for (int round = 0; round < 3; ++round) {
        // Never a box, also while it takes the windows over. A newer picom begins with a black
        // screen.
        startCompositing();
        EXPECT_TRUE(runUntil([&] {
            const auto row = captureScreen(watcher, {270, 270, 431, 1});
            EXPECT_TRUE(row.at({270, 270}) != 0U || row.at({700, 270}) == 0U);
            return channelDistance(pixel({300, 300}), blended(yellow, 0.35)) <= 3;
        }));
        compositing->terminate();
        EXPECT_TRUE(becomes({300, 300}, yellow));
        EXPECT_EQ(pixel({270, 270}), blue);
    }
}

TEST_F(OverlayDesktopTest, DoesNotFadeInWhereThePointerComes) {
    compositing.emplace(startCompositingManager(server, CompositingManager::picomEyeCandy));
    paintDesktop();
    input.moveTo({300, 300});
    preferences.click.style = ClickStyle::pulse;
    start();
    EXPECT_TRUE(becomes({300, 300}, blended(yellow, 0.35)));
    // A ring would be over before it had faded in.
    manager->addClick({300, 300}, false);
    EXPECT_TRUE(runUntil(
        [&] {
            return channelDistance(pixel({270, 300}), blue) > 60;
        },
        std::chrono::milliseconds(300)));
}

} // namespace
} // namespace vantrel::desktop
