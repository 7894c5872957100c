#include "support/event_loop.h"
#include "support/mock_login_manager.h"
#include "support/program_fixture.h"
#include "testdesk/core_application.h"

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

TEST_F(ProgramInUseTest, SavesItsModeWhenASignalEndsIt) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        auto program = start();
        EXPECT_TRUE(shows("highlight"));
        typeShortcut('l');
        ASSERT_TRUE(shows("laser"));
        program.signal(signal);
        EXPECT_EQ(program.wait(5s), (ExitStatus{.code = 0}));
        EXPECT_TRUE(shows("off"));
        EXPECT_EQ(storedMode(), "laser");
        EXPECT_EQ(errors(), "");
    }
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

// The program in a session that a login manager watches over.
class SleepTest : public ProgramInUseTest {
protected:
    ChildProcess startInSession() {
        auto program = start(
            {.environment = {{"DBUS_SYSTEM_BUS_ADDRESS", privateBusAddress().toStdString()}}});
        EXPECT_TRUE(shows("highlight"));
        EXPECT_TRUE(waitUntilHeld());
        return program;
    }
    [[nodiscard]] bool waitUntilHeld() const {
        return runUntil(
            [this] { return manager.sleepLocks() == 1 && manager.shutdownLocks() == 1; });
    }

private:
    CoreApplication application_;
    PrivateBus bus_{privateBusSocket()};

protected:
    MockLoginManager manager;
};

TEST_F(SleepTest, WaitsForTheSaveAndTheOverlayComesBackAfterIt) {
    auto program = startInSession();
    typeShortcut('l');
    ASSERT_TRUE(shows("laser"));
    manager.announce("PrepareForSleep", true);
    EXPECT_TRUE(runUntil([this] { return manager.sleepLocks() == 0; }));
    EXPECT_EQ(storedMode(), "laser");
    EXPECT_TRUE(shows("off"));

    manager.announce("PrepareForSleep", false);
    EXPECT_TRUE(shows("laser"));
    EXPECT_TRUE(waitUntilHeld());
    typeShortcut('h');
    EXPECT_TRUE(shows("highlight"));
    EXPECT_TRUE(stores("highlight"));
    EXPECT_EQ(errors(), "");
}

TEST_F(SleepTest, IsNotNeededForTheShutdownToSaveAndEndTheProgram) {
    auto program = startInSession();
    typeShortcut('l');
    ASSERT_TRUE(shows("laser"));
    manager.announce("PrepareForShutdown", true);
    EXPECT_TRUE(runUntil([this] { return manager.shutdownLocks() == 0; }));
    EXPECT_EQ(storedMode(), "laser");
    EXPECT_EQ(program.wait(5s), ExitStatus{.code = 0});
    EXPECT_EQ(errors(), "");
}

} // namespace
} // namespace vantrel::desktop
