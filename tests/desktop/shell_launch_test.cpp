#include "support/shell_fixture.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

class LaunchTest : public ShellTest {
protected:
    ChildProcess startSecond(std::vector<std::string> arguments = {}) {
        return start({.preferences = nullptr, .arguments = std::move(arguments), .log = "second"});
    }
};

TEST_F(LaunchTest, OfAFreshInstallationOpensTheWelcomeAndSavesForTheUserAlone) {
    {
        const auto program = startAgain();
        const auto window = shown(welcome);
        ASSERT_TRUE(window);
        EXPECT_TRUE(getsFocus(*window));
        EXPECT_EQ(visibleWindows(watcher, anyWindow).size(), 1U);
        EXPECT_FALSE(fs::exists(configFolder()));
        typeShortcut('h');
        EXPECT_TRUE(stores("highlight"));
        EXPECT_EQ(fs::status(configFolder()).permissions(), fs::perms::owner_all);
        EXPECT_EQ(fs::status(document()).permissions(),
                  fs::perms::owner_read | fs::perms::owner_write);
    }
    const auto program = startSecond({"--settings"});
    EXPECT_TRUE(shown(overlay));
    EXPECT_TRUE(shown(settings));
    EXPECT_EQ(visibleWindows(watcher, anyWindow).size(), 1U);
    EXPECT_EQ(errors(), "");
}

TEST_F(LaunchTest, OpensNoWindowOnceTheWelcomeWasDismissed) {
    const auto program = start();
    ASSERT_TRUE(shown(overlay));
    EXPECT_TRUE(staysHidden(anyWindow));
}

TEST_F(LaunchTest, AnotherStartReachesTheRunningProgramWithoutATray) {
    auto program = start();
    ASSERT_TRUE(shown(overlay));
    typeShortcut('l');
    EXPECT_TRUE(stores("laser"));
    EXPECT_EQ(startSecond().wait(5s), (ExitStatus{.code = 0}));
    const auto window = shown(settings);
    ASSERT_TRUE(window);
    EXPECT_TRUE(getsFocus(*window));
    EXPECT_FALSE(watcher.property(window->id, "_NET_WM_ICON").empty());

    // A window that was closed comes back where it was left, one that lies behind or is minimised
    // comes to the front.
    const std::uint32_t moved[] = {30, 50};
    xcb_configure_window(watcher.get(), window->id, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                         moved);
    ASSERT_TRUE(waitFor([&] { return stateOf(watcher, window->id)->area.x < 50; }));
    const PixelRect left = stateOf(watcher, window->id)->area;
    requestClose(watcher, *window);
    ASSERT_TRUE(isGone(settings));
    EXPECT_EQ(startSecond({"--settings"}).wait(5s), (ExitStatus{.code = 0}));
    const auto again = shown(settings);
    ASSERT_TRUE(again);
    EXPECT_TRUE(waitFor([&] { return stateOf(watcher, again->id)->area == left; }));
    requestMinimized(watcher, *again);
    ASSERT_TRUE(isGone(settings));
    EXPECT_EQ(startSecond().wait(5s), (ExitStatus{.code = 0}));
    ASSERT_TRUE(shown(settings));
    {
        const ClientWindow other(server.display(),
                                 {.area = {0, 0, 1280, 900}, .overrideRedirect = false});
        xcb_set_input_focus(watcher.get(), XCB_INPUT_FOCUS_NONE, other.id(), XCB_CURRENT_TIME);
        watcher.sync();
        EXPECT_EQ(startSecond().wait(5s), (ExitStatus{.code = 0}));
        EXPECT_TRUE(getsFocus(*again));
    }
    EXPECT_TRUE(program.running());
    EXPECT_EQ(errors(), "");
}

TEST_F(LaunchTest, AnotherStartBringsAWindowFromAnotherWorkspace) {
    const auto program = start({.arguments = {"--settings"}});
    ASSERT_TRUE(shown(settings));
    // What is left of the start's own activation takes the window along once.
    ASSERT_TRUE(std::ranges::any_of(std::array{1U, 2U}, [this](std::uint32_t workspace) {
        requestWorkspace(watcher, workspace);
        return isGone(settings);
    }));
    EXPECT_EQ(startSecond().wait(5s), (ExitStatus{.code = 0}));
    const auto window = shown(settings);
    ASSERT_TRUE(window);
    EXPECT_TRUE(getsFocus(*window));
}

// A change in the desktop's own settings, for one.
TEST_F(LaunchTest, ComingBackToTheProgramTakesOverWhatHappenedToTheLoginItem) {
    const auto program = start({.arguments = {"--settings"}});
    const auto window = shown(settings);
    ASSERT_TRUE(window && getsFocus(*window));
    const ClientWindow other(server.display(),
                             {.area = {0, 0, 100, 100}, .overrideRedirect = false});
    const auto focus = [&](xcb_window_t id) {
        xcb_set_input_focus(watcher.get(), XCB_INPUT_FOCUS_NONE, id, XCB_CURRENT_TIME);
        watcher.sync();
    };
    const auto autostart = server.folder() / "config" / "autostart";
    fs::create_directories(autostart);
    std::ofstream(autostart / "vantrel.desktop")
        << "[Desktop Entry]\nType=Application\nExec=" << programUnderTest().string() << '\n';
    // The toolkit takes a keyboard that comes back soon for one that has never left.
    EXPECT_TRUE(waitFor([&] {
        focus(other.id());
        std::this_thread::sleep_for(500ms);
        focus(window->id);
        return waitFor([&] { return stored().value("launchAtLogin", false); }, 1s);
    }));
}

// What a window's frame takes as well, at 1 and at 2 pixels for each point.
struct Screen {
    PixelSize size;
    std::string resources;
};

class ScreenTest : public ShellTest, public testing::WithParamInterface<Screen> {
protected:
    ScreenTest() : ShellTest(PrivateServer::virtualScreen(GetParam().size)) {
        const auto& resources = GetParam().resources;
        xcb_change_property(watcher.get(), XCB_PROP_MODE_REPLACE, watcher.root(),
                            XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 8,
                            static_cast<std::uint32_t>(resources.size()), resources.data());
        watcher.sync();
    }
};

TEST_P(ScreenTest, ShowsWindowsInItsMiddleAndWhole) {
    const auto program = start({.preferences = nullptr});
    const auto [width, height] = GetParam().size;
    ASSERT_TRUE(shown(anyWindow));
    EXPECT_TRUE(waitFor([&, width = width, height = height] {
        const auto window = shown(anyWindow);
        const PixelRect area = window ? framed(watcher, *window) : PixelRect{};
        const PixelPoint center = centerOf(area);
        return contains({0, 0, width, height}, area) && std::abs(center.x - width / 2) <= 2 &&
               std::abs(center.y - height / 2) <= 2;
    }));
}

INSTANTIATE_TEST_SUITE_P(All, ScreenTest,
                         testing::Values(Screen{{1280, 900}, ""}, Screen{{800, 480}, ""},
                                         Screen{{1920, 1080}, "Xft.dpi: 192\n"}));

} // namespace
} // namespace vantrel::desktop
