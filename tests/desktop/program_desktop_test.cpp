#include "desktop/harness/client_window.h"
#include "desktop/harness/desktop_programs.h"
#include "desktop/harness/screen_capture.h"
#include "desktop/harness/synthetic_input.h"
#include "desktop/harness/vantrel_program.h"
#include "desktop/harness/wait.h"
#include "desktop/harness/x_traffic.h"

#include <gtest/gtest.h>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

// The built program on a private server.
class ProgramTest : public ::testing::Test {
protected:
    ChildProcess start(const VantrelOptions& options = {}) {
        return startVantrel(server, VANTREL_PROGRAM, options);
    }
    bool highlightShows() {
        return waitFor([&] { return pixelAt(watcher, {300, 300}) != black; });
    }
    std::string errors() { return readFile(server.folder() / "vantrel.err"); }

    static constexpr std::uint32_t black = 0;
    PrivateServer server = PrivateServer::virtualScreen({800, 600});
    XConnection watcher{server.display()};
    SyntheticInput input{server.display()};
};

TEST_F(ProgramTest, ShowsTheHighlightUntilASignalEndsIt) {
    const ClientWindow desktop(server.display(), {.area = {0, 0, 800, 600}, .color = 0xFF000000});
    const auto compositing = startCompositingManager(server);
    input.moveTo({300, 300});
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        auto program = start();
        EXPECT_TRUE(highlightShows());
        program.signal(signal);
        EXPECT_EQ(program.wait(5s), (ExitStatus{.code = 0}));
        EXPECT_TRUE(waitFor([&] { return pixelAt(watcher, {300, 300}) == black; }));
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
          "vantrel: unknown argument \"--nonsense\", see vantrel --help\n");
}

TEST_F(ProgramTest, EndsWithTheServer) {
    input.moveTo({300, 300});
    auto program = start();
    ASSERT_TRUE(highlightShows());
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

} // namespace
} // namespace vantrel::desktop
