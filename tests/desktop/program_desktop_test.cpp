#include "support/program_fixture.h"
#include "testdesk/x_traffic.h"

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

TEST_F(ProgramInUseTest, ShowsTheHighlightUntilASignalEndsIt) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        auto program = start();
        EXPECT_TRUE(shows("highlight"));
        program.signal(signal);
        EXPECT_EQ(program.wait(5s), (ExitStatus{.code = 0}));
        EXPECT_TRUE(shows("off"));
        EXPECT_EQ(errors(), "");
    }
}

TEST_F(ProgramTest, SaysInOneLineWhatItCannotDo) {
    const auto fails = [&](const VantrelOptions& options, int code, std::string_view line) {
        auto program = start(options);
        EXPECT_EQ(program.wait(5s), (ExitStatus{.code = code}));
        EXPECT_EQ(errors(), line);
    };
    fails({.environment = {{"DISPLAY", ""}}}, 1,
          "vantrel: cannot connect to an X server: DISPLAY is not set\n");
    fails({.environment = {{"DISPLAY", ":4321"}}}, 1,
          "vantrel: cannot connect to the X server \":4321\"\n");
    fails({.arguments = {"--nonsense"}}, 2,
          "vantrel: unknown command \"--nonsense\", see vantrel --help\n");
}

TEST_F(ProgramTest, EndsWithTheServer) {
    input.moveTo({300, 300});
    auto program = start();
    ASSERT_TRUE(waitFor([&] { return isMarked(watcher, {300, 300}, 0); }));
    server.stop();
    EXPECT_EQ(program.wait(5s), (ExitStatus{.code = 0}));
    EXPECT_EQ(errors(), "");
}

TEST_F(ProgramTest, AsksOnlyForFramesAndThePointerWhileItRests) {
    const auto compositing = startCompositingManager(server);
    XTraffic traffic(server.display());
    const auto program = start({.display = traffic.display()});
    ASSERT_TRUE(waitFor([&] { return traffic.counts().frames.size() > 60; }));
    const auto before = traffic.counts();
    ASSERT_TRUE(
        waitFor([&] { return traffic.counts().frames.size() >= before.frames.size() + 120; }));
    const auto rest = traffic.counts() - before;
    const RequestKind notifyFrame{*watcher.majorOpcode("Present"), 2};
    const RequestKind queryPointer{38, 0};
    EXPECT_NEAR(static_cast<double>(rest.count(notifyFrame)), 120, 3);
    EXPECT_NEAR(static_cast<double>(rest.count(queryPointer)), 120, 3);
    EXPECT_EQ(rest.totalRequests(), rest.count(notifyFrame) + rest.count(queryPointer));
}

TEST_F(ProgramInUseTest, TogglesTheModesFromAnotherProgramsWindow) {
    auto program = start({.preferences = preferencesShowing("laser")});
    ASSERT_TRUE(shows("laser"));
    typeShortcut('l');
    EXPECT_TRUE(shows("off"));
    for (const auto lock : {XK_Caps_Lock, XK_Num_Lock}) {
        input.typeChord({static_cast<std::uint32_t>(lock)});
    }
    typeShortcut('h');
    EXPECT_TRUE(shows("highlight"));
    typeShortcut('l');
    EXPECT_TRUE(shows("laser"));
    typeShortcut('h');
    EXPECT_TRUE(shows("highlight"));
    typeShortcut('h');
    EXPECT_TRUE(shows("off"));
    EXPECT_TRUE(program.running());
    EXPECT_EQ(errors(), "");
}

TEST_F(ProgramInUseTest, PlaysClicksInHighlightModeOnly) {
    const auto ringAppears = [&](std::chrono::milliseconds limit) {
        // Beside the disc, where a pulse passes slowly.
        constexpr PixelPoint onRing{place.x + 35, place.y};
        return waitFor([&] { return pixelAt(watcher, onRing) != 0; }, limit) &&
               waitFor([&] { return pixelAt(watcher, onRing) == 0; });
    };
    auto preferences = preferencesShowing("highlight");
    preferences["click"]["style"] = "pulse";
    const auto program = start({.preferences = preferences});
    ASSERT_TRUE(shows("highlight"));
    // The mark may show a moment before the program listens to clicks.
    ASSERT_TRUE(waitFor([&] {
        input.click();
        return ringAppears(1s);
    }));
    for (const auto button : {Button::left, Button::right}) {
        input.click(button);
        EXPECT_TRUE(ringAppears(10s));
    }
    typeShortcut('l');
    ASSERT_TRUE(shows("laser"));
    input.click();
    EXPECT_FALSE(ringAppears(300ms));
}

} // namespace
} // namespace vantrel::desktop
