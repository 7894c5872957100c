#include "desktop/harness/core_application.h"
#include "desktop/harness/desktop_programs.h"
#include "desktop/harness/screen_capture.h"
#include "desktop/harness/status_notifier_host.h"
#include "desktop/harness/tray.h"
#include "desktop/harness/wait.h"

#include <gmock/gmock.h>

#include <optional>

#include <X11/keysym.h>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

// A tray application of one popup and one window, on a private server.
class TraysSmoke : public testing::Test {
protected:
    ChildProcess startEmptyTray(const Environment& more = {}) {
        Environment environment = server.environment();
        environment.insert_or_assign("LANG", "C.UTF-8");
        for (const auto& [name, value] : more) {
            environment[name] = value;
        }
        return ChildProcess({.arguments = {VANTREL_EMPTY_TRAY}, .environment = environment});
    }

    const std::string program = "vantrel_empty_tray";
    PrivateServer server = PrivateServer::virtualScreen({1024, 768});
    XConnection watcher{server.display()};
    ChildProcess windowManager = startWindowManager(server);
    SyntheticInput input{server.display()};
    const WindowQuery popup{.program = program, .width = 340, .height = 480};
    const WindowQuery window{.program = program, .title = "Empty", .width = 560, .height = 640};

private:
    CoreApplication application_;
};

TEST_F(TraysSmoke, AnIconAppearsInTheTrayAndComesBackWithIt) {
    std::optional<Tray> tray(std::in_place, server);
    const ChildProcess application = startEmptyTray();
    const auto area = tray->waitForIcon(program);
    ASSERT_TRUE(area);
    EXPECT_GT(area->y, 700);
    constexpr std::uint32_t darkGreen = 0x008000;
    EXPECT_TRUE(waitFor([&] { return pixelAt(watcher, centerOf(*area)) == darkGreen; }));

    tray->kill();
    EXPECT_FALSE(tray->iconArea(program));
    tray.emplace(server, Tray::Edge::top);
    const auto next = tray->waitForIcon(program);
    ASSERT_TRUE(next);
    EXPECT_LT(next->y, 32);
    EXPECT_TRUE(waitFor([&] { return pixelAt(watcher, centerOf(*next)) == darkGreen; }));
}

TEST_F(TraysSmoke, WindowsOfAProgramAreFoundClickedTypedIntoAndClosed) {
    const Tray tray(server);
    const ChildProcess application = startEmptyTray();
    const auto area = tray.waitForIcon(program);
    ASSERT_TRUE(area);
    EXPECT_FALSE(waitForWindow(watcher, popup, 0ms));
    input.moveTo(centerOf(*area));
    input.click();
    const auto opened = waitForWindow(watcher, popup);
    ASSERT_TRUE(opened);
    EXPECT_TRUE(typeIn(input, watcher, *opened, {XK_Control_L, ','}));
    EXPECT_TRUE(waitUntilGone(watcher, popup));
    const auto next = waitForWindow(watcher, window);
    ASSERT_TRUE(next);
    EXPECT_TRUE(waitFor([&] { return hasFocus(watcher, next->id); }));
    EXPECT_FALSE(hasFocus(watcher, opened->id));
    clickIn(input, *next, {10, 10});
    EXPECT_EQ(watcher.pointer(), (PixelPoint{next->area.x + 10, next->area.y + 10}));
    requestClose(watcher, *next);
    EXPECT_TRUE(waitUntilGone(watcher, window));
}

TEST_F(TraysSmoke, AStatusNotifierItemIsReadActivatedAndChosenFrom) {
    PrivateBus bus(server.folder() / "runtime" / "bus");
    std::optional<StatusNotifierHost> host(std::in_place, bus);
    ChildProcess application = startEmptyTray({{"DBUS_SESSION_BUS_ADDRESS", bus.address()}});
    const auto item = host->waitForItem();
    ASSERT_TRUE(item);
    EXPECT_EQ(item->toolTip(), "Empty");
    ASSERT_FALSE(item->icons().empty());
    EXPECT_EQ(item->icons().front().pixels.left(4), QByteArray::fromHex("ff008000"));
    EXPECT_TRUE(item->activate({10, 10}));
    EXPECT_TRUE(waitForWindow(watcher, popup));

    host.reset();
    host.emplace(bus);
    const auto again = host->waitForItem();
    ASSERT_TRUE(again);
    ASSERT_EQ(again->menu().size(), 1U);
    EXPECT_FALSE(again->choose("Nothing"));
    EXPECT_TRUE(again->choose("Quit"));
    EXPECT_EQ(application.wait(5s), (ExitStatus{.code = 0}));
    EXPECT_TRUE(waitFor([&] { return host->items().empty(); }));
}

} // namespace
} // namespace vantrel::desktop
