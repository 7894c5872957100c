#include "day.h"
#include "measurements.h"

#include "tray_desktop.h"

#include "testdesk/client_window.h"
#include "testdesk/displays.h"
#include "testdesk/private_bus.h"
#include "testdesk/usage.h"
#include "testdesk/wait.h"

#include <array>
#include <sstream>
#include <thread>

#include <X11/keysym.h>

namespace vantrel::bench {
namespace {

using namespace std::chrono_literals;

constexpr desktop::PixelRect wholeScreen{0, 0, 1920, 1080};

// A day on a desktop, which begins and ends with the program Off.
class Day {
public:
    Day(TrayDesktop& desktop, const TrayProgram& program, const day::LoginManager& login)
        : desktop_(desktop), program_(program), login_(login) {}

    // One of its parts.
    void live() {
        using day::parts;
        toggle('h');
        setDisplays(1);
        move(day::motions / parts);
        clickAround(day::clicks / parts);
        for (int i = 0; i < day::sleeps / parts; ++i) {
            login_.announceSleep(true);
            move(50);
            login_.announceSleep(false);
            move(50);
        }
        for (int i = 0; i < day::locks / parts; ++i) {
            const desktop::ClientWindow locker(desktop_.bench.server.display(),
                                               {.area = wholeScreen, .color = 0});
            move(50);
        }
        for (int i = 0; i < day::displayChanges / parts; ++i) {
            setDisplays(i % 2 == 0 ? 2 : 1);
            move(100);
        }
        setDisplays(1);
        const int changes = day::modeChanges / parts;
        atPace(day::modeChangesPerSecond, changes / day::modeChangesPerSecond, [&](int step) {
            move(1);
            toggle(step % 2 == 0 ? 'l' : 'h');
        });
        for (int i = 0; i < day::openings / parts; ++i) {
            openPopup(desktop_, program_);
            closePopup(desktop_, program_);
        }
        toggle('h'); // on, as the last of an even number of changes; off now
    }

private:
    void move(int count) {
        atPace(day::motionsPerSecond, count / day::motionsPerSecond, [&](int) {
            const auto [x, y] = onCircle(step_++, 400);
            desktop_.bench.input.moveTo({static_cast<int>(960 + x), static_cast<int>(500 + y)},
                                        desktop::SyntheticInput::Wait::no);
        });
    }
    // In another program's window.
    void clickAround(int count) {
        constexpr std::array buttons{desktop::Button::left, desktop::Button::right};
        const desktop::ClientWindow window(desktop_.bench.server.display(), {.area = wholeScreen});
        atPace(day::clicksPerSecond, count / day::clicksPerSecond, [&](int step) {
            move(1);
            desktop_.bench.input.click(buttons[static_cast<std::size_t>(step % 2)]);
        });
    }
    // One or two, side by side.
    void setDisplays(int count) const {
        const int width = 1920 / count;
        std::vector<desktop::PixelRect> monitors{{0, 0, width, 1080}};
        if (count == 2) {
            monitors.push_back({width, 0, width, 1080});
        }
        desktop::setMonitors(desktop_.bench.connection, monitors);
    }
    void toggle(char key) const {
        desktop_.bench.input.typeChord({XK_Control_L, XK_Alt_L, static_cast<std::uint32_t>(key)});
    }

    TrayDesktop& desktop_;
    const TrayProgram& program_;
    const day::LoginManager& login_;
    int step_ = 0;
};

} // namespace

Report measureDay(const Contenders& contenders, const Effort& effort) {
    if (!contenders.reacts) {
        return {};
    }
    TrayDesktop desktop;
    const desktop::PrivateBus systemBus(desktop.bench.server.folder() / "system-bus");
    const day::LoginManager login(systemBus.address());
    desktop.environment["DBUS_SYSTEM_BUS_ADDRESS"] = systemBus.address();
    const auto program = rehearse(desktop, contenders.programAsApplication, true);
    const auto process = startInTray(desktop, program);
    desktop.bench.input.typeChord({XK_Control_L, XK_Alt_L, 'h'});
    Day life(desktop, program, login);
    life.live();
    const auto isBlank = [&] {
        const desktop::PixelRect withoutTray{0, 0, 1920, program.icon.y - 10};
        const auto picture = captureScreen(desktop.bench.connection, withoutTray);
        return std::ranges::count(picture.pixels, desktop.bench.background) ==
               std::ssize(picture.pixels);
    };
    bool blank = desktop::waitFor(isBlank);
    const Usage before = usageOf(desktop, process);
    for (int part = 1; part < effort.partsOfDay; ++part) {
        life.live();
        blank = desktop::waitFor(isBlank) && blank;
    }
    const Usage after = usageOf(desktop, process);
    const auto errors = desktop::readFile(desktop.bench.server.folder() / "contender.err");
    return {.checks = {{.name = "a day's use: held from its first hour to its last",
                        .met = !after.exceeds(before),
                        .found = describe(before, after)},
                       {.name = "a day's use: marks left on the screen",
                        .met = blank,
                        .found = blank ? "none" : "some"},
                       {.name = "a day's use: errors written",
                        .met = errors.empty(),
                        .found = errors.empty() ? "none" : errors}}};
}

} // namespace vantrel::bench
