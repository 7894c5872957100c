#include "platform/freedesktop/unique_descriptor.h"
#include "support/event_loop.h"
#include "support/mock_login_manager.h"
#include "support/program_fixture.h"
#include "testdesk/core_application.h"

#include <algorithm>

#include <fcntl.h>
#include <sys/file.h>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

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
    // Where the program writes a document before it takes the place of the former one.
    [[nodiscard]] fs::path unfinishedDocument() const {
        return configFolder() / ".Vantrel.preferences.v1.new";
    }
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
    // As a slow disk would; until the result is destroyed.
    [[nodiscard]] UniqueDescriptor holdUpSaves() const {
        UniqueDescriptor file(
            open(unfinishedDocument().c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR));
        EXPECT_EQ(flock(file.get(), LOCK_EX), 0);
        return file;
    }
    [[nodiscard]] bool isHeldUp(const ChildProcess& program) const {
        const auto open = "/proc/" + std::to_string(program.pid()) + "/fd";
        return waitFor([&] {
            return std::ranges::any_of(fs::directory_iterator(open), [this](const auto& file) {
                std::error_code closed;
                return fs::read_symlink(file.path(), closed) == unfinishedDocument();
            });
        });
    }

private:
    CoreApplication application_;
    PrivateBus bus_{privateBusSocket()};

protected:
    MockLoginManager manager;
};

TEST_F(SleepTest, WaitsForTheSaveAndTheOverlayComesBackAfterIt) {
    auto program = startInSession();
    auto slowDisk = std::make_optional(holdUpSaves());
    typeShortcut('l');
    ASSERT_TRUE(shows("laser"));
    manager.announce("PrepareForSleep", true);
    EXPECT_TRUE(shows("off"));
    EXPECT_TRUE(isHeldUp(program));
    EXPECT_EQ(manager.sleepLocks(), 1);
    EXPECT_EQ(storedMode(), "highlight");
    slowDisk.reset();
    EXPECT_TRUE(runUntil([this] { return manager.sleepLocks() == 0; }));
    EXPECT_EQ(storedMode(), "laser");

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
