#include "desktop/shell_fixture.h"

#include <algorithm>
#include <array>
#include <csignal>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

class LaunchTest : public ShellTest {
protected:
    ChildProcess startSecond(std::vector<std::string> arguments = {}) {
        return start({.preferences = nullptr, .arguments = std::move(arguments), .log = "second"});
    }
};

TEST_F(LaunchTest, OpensTheWelcomeUntilItWasDismissedOrTheSettingsOnRequest) {
    struct Case {
        nlohmann::json preferences;
        std::vector<std::string> arguments;
        WindowQuery opened;
    };
    // The first ones store nothing.
    for (const auto& [preferences, arguments, opened] :
         {Case{nullptr, {}, welcome}, Case{nullptr, {"--settings"}, settings},
          Case{preferencesShowing("highlight"), {"--settings"}, settings}}) {
        const auto program = start({.preferences = preferences, .arguments = arguments});
        const auto window = shown(opened);
        ASSERT_TRUE(window);
        EXPECT_TRUE(getsFocus(*window));
        EXPECT_EQ(visibleWindows(watcher, anyWindow).size(), 1U);
    }
    const auto program = start();
    ASSERT_TRUE(shown(overlay));
    EXPECT_TRUE(staysHidden(anyWindow));
    EXPECT_EQ(errors(), "");
}

TEST_F(LaunchTest, ControlAndTheCommaKeyOpenTheSettingsFromAWindow) {
    const auto program = start({.preferences = nullptr});
    const auto window = shown(welcome);
    ASSERT_TRUE(window);
    ASSERT_TRUE(typeIn(input, watcher, *window, {XK_Control_L, ','}));
    EXPECT_TRUE(shown(settings));
    EXPECT_TRUE(shown(welcome));
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

    // A window that was closed comes back, one that lies behind comes to the front.
    requestClose(watcher, *window);
    ASSERT_TRUE(isGone(settings));
    EXPECT_EQ(startSecond({"--settings"}).wait(5s), (ExitStatus{.code = 0}));
    const auto again = shown(settings);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->area, window->area);
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

TEST_F(LaunchTest, StartsAtTheSameMomentLeaveOneProgram) {
    writePreferences(server.folder() / "config", preferencesShowing("highlight"));
    for (int round = 0; round < 3; ++round) {
        std::vector<ChildProcess> programs;
        for (const char* log : {"one", "two", "three"}) {
            programs.push_back(start({.preferences = nullptr, .log = log}));
        }
        const auto running = [&] {
            return std::ranges::count_if(programs, [](ChildProcess& p) { return p.running(); });
        };
        EXPECT_TRUE(waitFor([&] { return running() == 1; }));
        ASSERT_TRUE(shown(settings));
        EXPECT_EQ(running(), 1);
        for (ChildProcess& program : programs) {
            if (!program.running()) {
                EXPECT_EQ(program.wait(0ms), (ExitStatus{.code = 0}));
            }
        }
    }
}

TEST_F(LaunchTest, IsNotPreventedByARunThatWasKilled) {
    auto killed = start();
    ASSERT_TRUE(shown(overlay));
    killed.signal(SIGKILL);
    killed.wait(5s);
    auto program = start();
    EXPECT_TRUE(shown(overlay));
    EXPECT_TRUE(program.running());
}

} // namespace
} // namespace vantrel::desktop
