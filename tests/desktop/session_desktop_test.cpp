#include "support/freedesktop_event_loop.h"
#include "support/mock_login_manager.h"
#include "support/program_fixture.h"
#include "testdesk/core_application.h"
#include "testdesk/x_traffic.h"

#include <fstream>

#include <xcb/xinput.h>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

class SavedModeTest : public ProgramInUseTest {
protected:
    // Returns once the program, which shows nothing, has read what is stored and holds its
    // shortcuts.
    ChildProcess startAgainShowingNothing() {
        const auto grabs = [this] {
            return traffic.counts().count(
                {*watcher.majorOpcode("XInputExtension"), XCB_INPUT_XI_PASSIVE_GRAB_DEVICE});
        };
        const auto before = grabs();
        auto program = start({.preferences = nullptr, .display = traffic.display()});
        EXPECT_TRUE(waitFor([&] { return grabs() == before + 2; }));
        return program;
    }

    XTraffic traffic{server.display()};
};

TEST_F(SavedModeTest, OfAFreshInstallationIsForTheUserAloneAndComesBack) {
    {
        const auto program = startAgainShowingNothing();
        EXPECT_FALSE(fs::exists(configFolder()));
        typeShortcut('h');
        EXPECT_TRUE(stores("highlight"));
        EXPECT_EQ(fs::status(configFolder()).permissions(), fs::perms::owner_all);
        EXPECT_EQ(fs::status(document()).permissions(),
                  fs::perms::owner_read | fs::perms::owner_write);
    }
    const auto program = startAgain();
    EXPECT_TRUE(shows("highlight"));
    EXPECT_EQ(errors(), "");
}

TEST_F(SavedModeTest, IsWrittenAtOnceWhenASignalOrTheServerEndsTheProgram) {
    const std::vector<std::function<void(const ChildProcess&)>> endings{
        [](const ChildProcess& program) { program.signal(SIGTERM); },
        [this](const ChildProcess&) { server.stop(); }};
    for (const auto& end : endings) {
        auto program = start();
        ASSERT_TRUE(shows("highlight"));
        typeShortcut('l');
        ASSERT_TRUE(shows("laser"));
        end(program);
        EXPECT_EQ(program.wait(5s), ExitStatus{.code = 0});
        EXPECT_EQ(storedMode(), "laser");
        EXPECT_EQ(errors(), "");
    }
}

TEST_F(SavedModeTest, IsTheDefaultWhereNothingUsableIsStoredWhichIsKept) {
    constexpr std::string_view bytes = R"({"lastMode":"laser",)";
    fs::create_directories(configFolder());
    std::ofstream(configFolder() / "welcomeDismissed") << "true";
    std::ofstream(document()) << bytes;
    auto program = startAgainShowingNothing();
    EXPECT_EQ(readFile(document()), bytes);
    EXPECT_EQ(program.terminate(), ExitStatus{.code = 0});
    EXPECT_EQ(storedMode(), "off");
    EXPECT_EQ(readFile(document().string() + ".unusable"), bytes);
    EXPECT_EQ(errors(), "");
}

// The program in a session that a login manager watches over.
class SleepTest : public SavedModeTest {
protected:
    ChildProcess startInSession() {
        auto program = start(
            {.environment = {{"DBUS_SYSTEM_BUS_ADDRESS", privateBusAddress().toStdString()}}});
        EXPECT_TRUE(shows("highlight"));
        EXPECT_TRUE(waitUntilHeld());
        return program;
    }
    [[nodiscard]] bool waitUntilHeld() const {
        return waitUntil(
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
    EXPECT_TRUE(waitUntil([this] { return manager.sleepLocks() == 0; }));
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
    EXPECT_TRUE(waitUntil([this] { return manager.shutdownLocks() == 0; }));
    EXPECT_EQ(storedMode(), "laser");
    EXPECT_EQ(program.wait(5s), ExitStatus{.code = 0});
    EXPECT_EQ(errors(), "");
}

} // namespace
} // namespace vantrel::desktop
