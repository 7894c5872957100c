#include "support/overlay_fixture.h"

#include <algorithm>
#include <ranges>
#include <span>

namespace vantrel::desktop {
namespace {

constexpr std::uint32_t green = 0x208040;

class OverlayStackingTest : public OverlayDesktopTest {
protected:
    void SetUp() override {
        startCompositing();
        paintDesktop();
        input.moveTo({300, 300});
    }
    // The picture tells it only once the compositing manager has painted. Windows that the overlays
    // keep ready beyond the screen cover nothing, wherever they are in the order.
    bool isOnTop(const ClientWindow& window) const {
        const auto tree = ownReply(xcb_query_tree_reply(
            watcher.get(), xcb_query_tree(watcher.get(), watcher.root()), nullptr));
        const std::span windows(xcb_query_tree_children(tree.get()), tree->children_len);
        const auto top = std::ranges::find_if(std::views::reverse(windows),
                                              [&](xcb_window_t each) { return isOnScreen(each); });
        return *top == window.id();
    }
    bool isOnScreen(xcb_window_t window) const {
        const auto place = ownReply(xcb_get_geometry_reply(
            watcher.get(), xcb_get_geometry(watcher.get(), window), nullptr));
        return place && place->x < wholeScreen().area.width &&
               place->y < wholeScreen().area.height && place->x + place->width > 0 &&
               place->y + place->height > 0;
    }
    ClientWindowOptions wholeScreen() const {
        return {.area = {0, 0, 1000, 600}, .color = 0xFF000000U | green};
    }
};

TEST_F(OverlayStackingTest, StaysAboveMenusThatOpenLater) {
    start();
    EXPECT_TRUE(becomes({300, 300}, blended(yellow, 0.35)));
    for (int round = 0; round < 5; ++round) {
        const ClientWindow menu(server.display(), wholeScreen());
        EXPECT_TRUE(becomes({300, 300}, blended(yellow, 0.35, green))) << round;
    }
}

TEST_F(OverlayStackingTest, StaysAboveAFullScreenWindow) {
    background.reset(); // it is out of the window manager's hands, and would stay above
    const auto windowManager = startWindowManager(server);
    start();
    auto options = wholeScreen();
    options.overrideRedirect = false;
    options.fullScreen = true;
    ClientWindow player(server.display(), options);
    EXPECT_TRUE(becomes({700, 300}, green));
    EXPECT_TRUE(becomes({300, 300}, blended(yellow, 0.35, green)));
    player.raise();
    EXPECT_TRUE(becomes({300, 300}, blended(yellow, 0.35, green)));
}

TEST_F(OverlayStackingTest, GoesAboveAWindowThatIsRaised) {
    ClientWindow other(server.display(), wholeScreen());
    start();
    EXPECT_TRUE(becomes({300, 300}, blended(yellow, 0.35, green)));
    other.raise();
    EXPECT_TRUE(becomes({300, 300}, blended(yellow, 0.35, green)));
    // Also over one that nobody sees, as many programs keep some.
    xcb_create_window(watcher.get(), XCB_COPY_FROM_PARENT, xcb_generate_id(watcher.get()),
                      watcher.root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    watcher.sync();
    other.raise();
    EXPECT_TRUE(runUntil([&] { return !isOnTop(other); }));
    EXPECT_TRUE(becomes({300, 300}, blended(yellow, 0.35, green)));
}

TEST_F(OverlayStackingTest, YieldsToAWindowThatInsistsOnBeingAbove) {
    ClientWindow rival(server.display(), wholeScreen());
    start();
    EXPECT_TRUE(becomes({300, 300}, blended(yellow, 0.35, green)));
    // It goes above whenever it was covered, as a screen locker does.
    int rounds = 0;
    while (rounds < 50) {
        rival.raise();
        if (!runUntil([&] { return !isOnTop(rival); }, std::chrono::milliseconds(300))) {
            break;
        }
        ++rounds;
    }
    EXPECT_GE(rounds, 1);
    EXPECT_LE(rounds, x11::RaisePolicy::answersAllowed);
    // A click is drawn beneath it as well.
    preferences.click.style = ClickStyle::pulse;
    show(CursorMode::highlight);
    manager->addClick({300, 300}, MouseButton::left);
    EXPECT_FALSE(runUntil(
        [&] {
            return pixel({265, 300}) != green;
        },
        std::chrono::milliseconds(250)));
    EXPECT_TRUE(isOnTop(rival));
    // Others it still goes above, whether they open or are raised.
    ClientWindow menu(server.display(), wholeScreen());
    EXPECT_TRUE(becomes({300, 300}, blended(yellow, 0.35, green)));
    rival.raise();
    menu.raise();
    EXPECT_TRUE(becomes({300, 300}, blended(yellow, 0.35, green)));
}

} // namespace
} // namespace vantrel::desktop
