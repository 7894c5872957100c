#include "platform/freedesktop/desktop_entry.h"
#include "support/shell_fixture.h"

#include <algorithm>
#include <functional>
#include <thread>
#include <utility>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

// The program as a package installed it, on a private desktop. Takes a machine on which it is
// installed: see scripts/test-package.
class PackageTest : public ShellTest {
protected:
    // The program belongs to nobody then; it ends with the server.
    ~PackageTest() override { server.stop(); }

    // As a menu or a session does.
    void startEntry(const fs::path& entry) const {
        ChildProcess launcher({.arguments = {"gio", "launch", entry},
                               .environment = server.environment(),
                               .errors = server.folder() / "vantrel.err"});
        EXPECT_EQ(launcher.wait(10s), (ExitStatus{.code = 0})) << errors();
    }
    [[nodiscard]] pid_t processOf(const WindowState& window) const {
        const auto ids = watcher.property(window.id, "_NET_WM_PID");
        return ids.empty() ? 0 : static_cast<pid_t>(ids.front());
    }
    [[nodiscard]] static fs::path executableOf(pid_t process) {
        return fs::read_symlink("/proc/" + std::to_string(process) + "/exe");
    }
    [[nodiscard]] static bool ends(pid_t process) {
        return waitFor([&] { return !fs::exists("/proc/" + std::to_string(process)); });
    }
    [[nodiscard]] static bool isPainted(const Picture& picture) {
        return std::ranges::adjacent_find(picture.pixels, std::not_equal_to()) !=
               picture.pixels.end();
    }
    // In the settings, which are open.
    void clickLaunchAtLogin() {
        constexpr PixelPoint generalTab{386, 166};
        constexpr PixelPoint launchSwitch{502, 407};
        const auto opened = shown(settings);
        ASSERT_TRUE(opened);
        ASSERT_TRUE(getsFocus(*opened));
        const auto window = stateOf(watcher, opened->id);
        // The left of the page, with its title and without the pointer.
        const auto page = [&, area = window->area] {
            return captureScreen(watcher, {area.x, area.y + 220, 200, area.height - 220});
        };
        ASSERT_TRUE(waitFor([&] { return isPainted(page()); }));
        const Picture before = page();
        clickIn(input, *window, generalTab);
        // Until it is there and rests.
        Picture last = before;
        ASSERT_TRUE(waitFor([&] {
            std::this_thread::sleep_for(100ms);
            const Picture former = std::exchange(last, page());
            return last != before && last == former;
        }));
        clickIn(input, *window, launchSwitch);
    }

    const fs::path installed = "/usr/bin/vantrel";
    const fs::path menuEntry = "/usr/share/applications/vantrel.desktop";
    const fs::path loginEntry = server.folder() / "config" / "autostart" / "vantrel.desktop";
};

TEST_F(PackageTest, TheMenuEntryStartsTheInstalledProgram) {
    startEntry(menuEntry);
    const auto window = shown(welcome);
    ASSERT_TRUE(window);
    const pid_t process = processOf(*window);
    EXPECT_EQ(executableOf(process), installed);
    kill(process, SIGTERM);
    EXPECT_TRUE(ends(process));
    EXPECT_EQ(errors(), "");
}

TEST_F(PackageTest, ACallOverTheSessionBusStartsTheInstalledProgram) {
    ChildProcess call(
        {.arguments = {"dbus-run-session", "--", "gdbus", "call", "--session", "--dest",
                       "org.vantrel.Vantrel", "--object-path", "/org/vantrel/Vantrel", "--method",
                       "org.vantrel.Vantrel1.Toggle", "highlight"},
         .environment = server.environment(),
         .output = server.folder() / "call.out"});
    EXPECT_TRUE(shown(overlay));
    const auto window = shown(welcome);
    ASSERT_TRUE(window);
    EXPECT_EQ(executableOf(processOf(*window)), installed);
    EXPECT_EQ(call.wait(10s), (ExitStatus{.code = 0}));
}

TEST_F(PackageTest, TheSwitchHasTheInstalledProgramStartedAtLoginAndNoLonger) {
    {
        const auto program = start({.arguments = {"--settings"}});
        clickLaunchAtLogin();
        ASSERT_TRUE(waitFor([&] { return fs::exists(loginEntry); }));
        EXPECT_EQ(DesktopEntry(readFile(loginEntry)).string("Exec"), installed);
    }
    startEntry(loginEntry);
    ASSERT_TRUE(shown(overlay));
    EXPECT_EQ(startAgain().wait(5s), (ExitStatus{.code = 0}));
    const auto window = shown(settings);
    ASSERT_TRUE(window);
    EXPECT_EQ(executableOf(processOf(*window)), installed);
    clickLaunchAtLogin();
    EXPECT_TRUE(waitFor([&] { return !fs::exists(loginEntry); }));
}

} // namespace
} // namespace vantrel::desktop
