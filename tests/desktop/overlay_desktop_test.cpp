#include "support/overlay_fixture.h"

#include <array>
#include <cmath>
#include <utility>

#include <xcb/composite.h>

namespace vantrel::desktop {
namespace {

constexpr std::uint32_t substructure = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;

TEST_F(OverlayDesktopTest, BlendsEveryKindOfMarkWithWhatIsBelow) {
    startCompositing();
    paintDesktop();
    input.moveTo({420, 310});
    start();
    constexpr std::uint32_t red = 0xFF453A;
    struct Sample {
        int right; // pixels from the pointer
        std::uint32_t color;
        double opacity;
    };
    const auto shows = [&](CursorMode mode, std::initializer_list<Sample> samples) {
        show(mode);
        for (const auto& [right, color, opacity] : samples) {
            EXPECT_TRUE(becomes({420 + right, 310}, blended(color, opacity), 4)) << right;
        }
    };
    shows(CursorMode::highlight, {{0, yellow, 0.35}, {31, yellow, 0.35}, {33, yellow, 0}});
    preferences.highlight.style = HighlightStyle::ring;
    shows(CursorMode::highlight, {{31, yellow, 0.35}, {20, yellow, 0}, {5, yellow, 0.2625}});
    preferences.highlight.style = HighlightStyle::glow;
    shows(CursorMode::highlight, {{0, yellow, 0.35}, {14, yellow, 0.1225}, {33, yellow, 0}});
    shows(CursorMode::laser, {{3, red, 1}, {15, red, 0.083}, {25, red, 0}});
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
    ClientWindow beneath(server.display(),
                         {.area = {0, 0, 1000, 600}, .color = 0xFF000000U | blue});
    input.moveTo({500, 300});
    start();
    const auto clickArrives = [&](PixelPoint place) {
        const auto before = beneath.events().size();
        input.moveTo(place);
        EXPECT_TRUE(becomes(place, blended(yellow, 0.35)));
        input.click();
        return runUntil([&] { return beneath.events().size() >= before + 2; });
    };
    EXPECT_TRUE(clickArrives({500, 300}));
    setMonitors(watcher, {{0, 0, 400, 600}, {400, 0, 600, 600}});
    EXPECT_TRUE(clickArrives({401, 100}));
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

// Rows are left out of what is translucent.
TEST_F(OverlayDesktopTest, IsShapedWhereNothingBlends) {
    const auto yellowIn = [&](PixelRect area) {
        const auto colors = captureScreen(watcher, area).pixels;
        return std::ranges::count_if(
            colors, [](std::uint32_t color) { return channelDistance(color, yellow) <= 1; });
    };
    paintDesktop();
    input.moveTo({300, 300});
    start();
    for (const double opacity : {0.1, 0.9, 0.35}) {
        preferences.highlight.opacity = opacity;
        show(CursorMode::highlight);
        EXPECT_TRUE(runUntil([&] {
            const auto rows = static_cast<double>(yellowIn({300, 268, 1, 64}));
            return std::abs(rows / 64 - opacity) < 0.04;
        })) << opacity;
        EXPECT_EQ(pixel({300 - 30, 300 - 30}), blue); // the corner of the disc's box
    }
    // A click shows on the disc, in rows that the disc leaves out.
    constexpr PixelRect leftOut{300, 309, 28, 1};
    EXPECT_EQ(yellowIn(leftOut), 0);
    const bool clickShows = std::ranges::any_of(std::array{1, 2, 3}, [&](int /*attempt*/) {
        manager->addClick({300, 300}, MouseButton::left);
        return runUntil([&] { return yellowIn(leftOut) > 0; }, std::chrono::milliseconds(350));
    });
    EXPECT_TRUE(clickShows);
    preferences.highlight.style = HighlightStyle::ring;
    show(CursorMode::highlight);
    EXPECT_TRUE(becomes({320, 299}, blue));
    EXPECT_TRUE(becomes({331, 299}, yellow, 8));
    // Two at once, of which neither shows the other's.
    manager->addClick({200, 300}, MouseButton::left);
    runFor(std::chrono::milliseconds(80));
    manager->addClick({500, 300}, MouseButton::left);
    int circles = 0;
    EXPECT_FALSE(runUntil(
        [&] {
            const auto row = captureScreen(watcher, {500, 299, 48, 1});
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
}

TEST_F(OverlayDesktopTest, SwitchesWhenACompositingManagerComesOrGoes) {
    paintDesktop();
    input.moveTo({300, 300});
    start();
    EXPECT_TRUE(becomes({300, 299}, yellow));
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
        EXPECT_TRUE(becomes({300, 299}, yellow));
        EXPECT_EQ(pixel({270, 270}), blue);
    }
}

// Its manager lets go of all windows as long as nothing lies above one that fills the screen.
class LettingGoTest : public OverlayDesktopTest {
protected:
    void SetUp() override {
        xcb_discard_reply(watcher.get(), xcb_composite_query_version(watcher.get(), 0, 4).sequence);
        compositing.emplace(startCompositingManager(server, CompositingManager::picomLettingGo));
        paintDesktop();
        input.moveTo({300, 300});
        std::optional<ClientWindow> above(std::in_place, server.display(), ClientWindowOptions());
        ASSERT_TRUE(runUntil([this] { return blends(); }));
        above.reset();
        ASSERT_TRUE(runUntil([this] { return !blends(); }));
    }
    [[nodiscard]] bool blends() const {
        const auto pixmap = xcb_generate_id(watcher.get());
        const auto error = ownReply(xcb_request_check(
            watcher.get(),
            xcb_composite_name_window_pixmap_checked(watcher.get(), background->id(), pixmap)));
        if (!error) {
            xcb_free_pixmap(watcher.get(), pixmap);
        }
        return !error;
    }
    // Whether the disc comes to the pointer, and nothing else does on the way.
    [[nodiscard]] bool discComes(PixelPoint place) const {
        const auto disc = blended(yellow, 0.35);
        return runUntil([&] {
            const auto picture = captureScreen(watcher, {place.x - 32, place.y - 32, 64, 64});
            const bool shown = channelDistance(picture.at(place), disc) <= 3;
            EXPECT_EQ(picture.pixels.front(), blue) << "at its corner";
            EXPECT_TRUE(shown || picture.at(place) == blue) << std::hex << picture.at(place);
            EXPECT_EQ(pixel({0, 0}), blue);
            return shown;
        });
    }
};

TEST_F(LettingGoTest, TheDiscComesAndComesBackWithoutABox) {
    preferences.highlight.idleHide = true;
    preferences.highlight.idleSeconds = 0.5;
    start(CursorMode::off);
    for (int round = 0; round < 3 && !HasFailure(); ++round) {
        show(CursorMode::highlight);
        EXPECT_TRUE(discComes({300, 300})) << "on showing";
        EXPECT_TRUE(becomes({300, 300}, blue));
        runFor(std::chrono::milliseconds(300));
        EXPECT_TRUE(blends());
        input.moveTo({400 + round, 300});
        EXPECT_TRUE(discComes({400 + round, 300})) << "on coming back";
        show(CursorMode::off);
        EXPECT_TRUE(runUntil([this] { return !blends(); }));
        EXPECT_EQ(pixel({400, 300}), blue);
        input.moveTo({300, 300});
    }
}

TEST_F(LettingGoTest, LeavesTheManagerAloneWhileNothingIsShown) {
    start(CursorMode::off);
    runFor(std::chrono::milliseconds(100));
    xcb_change_window_attributes(watcher.get(), watcher.root(), XCB_CW_EVENT_MASK, &substructure);
    watcher.sync();
    runFor(std::chrono::milliseconds(300));
    watcher.sync();
    EXPECT_EQ(ownReply(xcb_poll_for_event(watcher.get())), nullptr);
}

TEST_F(OverlayDesktopTest, DoesNotFadeInWhereThePointerComes) {
    compositing.emplace(startCompositingManager(server, CompositingManager::picomEyeCandy));
    paintDesktop();
    input.moveTo({300, 300});
    preferences.click.style = ClickStyle::pulse;
    start();
    EXPECT_TRUE(becomes({300, 300}, blended(yellow, 0.35)));
    // A ring would be over before it had faded in.
    runFor(std::chrono::milliseconds(600));
    // Each in a window that has shown nothing yet.
    for (int i = 0; i < 5; ++i) {
        manager->addClick({300.0 + 100 * i, 300}, MouseButton::left);
        EXPECT_TRUE(runUntil(
            [&] {
                return channelDistance(pixel({270 + 100 * i, 300}), blue) > 60;
            },
            std::chrono::milliseconds(300)))
            << i;
    }
}

} // namespace
} // namespace vantrel::desktop
