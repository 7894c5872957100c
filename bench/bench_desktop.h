#pragma once

#include "testdesk/child_process.h"
#include "testdesk/desktop_programs.h"
#include "testdesk/private_server.h"
#include "testdesk/screen_capture.h"
#include "testdesk/synthetic_input.h"
#include "testdesk/usage.h"

#include <array>
#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace vantrel::bench {

// A private desktop with a window manager and a compositing manager, and nothing else on it.
struct BenchDesktop {
    explicit BenchDesktop(int monitorCount = 1); // side by side, 1920 by 1080 each

    desktop::PrivateServer server;
    desktop::XConnection connection;
    desktop::ChildProcess windowManager;
    desktop::ChildProcess compositingManager;
    desktop::SyntheticInput input;
    std::uint32_t background = 0;
};

// A program with its arguments.
struct Contender {
    std::vector<std::string> command;
};

// Who takes part: the program under test, and what it is compared with.
struct Contenders {
    Contender program;       // as a follower of the pointer
    Contender programAtRest; // the same, compared with floorAtRest
    Contender programAtShortcut;
    Contender programAsApplication;
    Contender floor;
    Contender floorAtRest;     // keeps a display link
    Contender floorAtShortcut; // shows and hides its mark by the shortcut of Highlight
    Contender emptyTray;
    bool reacts = true; // to clicks and modes; the floor in the program's place does not

    // What was built or installed beside the program.
    [[nodiscard]] std::filesystem::path dataFolder() const {
        return std::filesystem::path(program.command.front()).parent_path().parent_path() / "share";
    }
};

// The floor and the empty tray application lie beside this executable. Without a program the floor
// is compared with itself, and the empty tray application with itself: the ratios show the method's
// error.
[[nodiscard]] Contenders contendersFor(const std::string& program);

// Where the preferences of programs on the desktop are stored.
[[nodiscard]] std::filesystem::path storedDocument(const BenchDesktop& desktop);

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

// The time from begin until one of these pixels is no longer as it was; throws after ten seconds.
[[nodiscard]] Milliseconds timeToChange(const desktop::XConnection& connection,
                                        const std::vector<desktop::PixelPoint>& places,
                                        const std::vector<std::uint32_t>& before,
                                        Clock::time_point begin);

// Starts a follower; returns when the pointer is marked. A display other than the desktop's own may
// be given.
[[nodiscard]] desktop::ChildProcess startAndAwait(BenchDesktop& desktop, const Contender& contender,
                                                  const std::string& display = {});

// Calls the step at an even pace; it gets its number.
void atPace(double stepsPerSecond, double seconds, const std::function<void(int)>& step);

// A place on a circle around the origin, of which 1000 steps are one turn.
struct CirclePlace {
    double x = 0;
    double y = 0;
};
[[nodiscard]] CirclePlace onCircle(int step, double radius);

// What processes cost while the pointer is moved 1000 times a second: milliseconds of CPU time for
// each second, of each of them.
template <std::size_t count>
[[nodiscard]] std::array<double, count> motionCosts(const std::array<pid_t, count>& processes,
                                                    double seconds,
                                                    const std::function<void(int)>& move) {
    atPace(1000, 0.3, move); // warms up
    std::array<double, count> costs{};
    for (std::size_t i = 0; i < count; ++i) {
        costs.at(i) = -Milliseconds(desktop::cpuTime(processes.at(i))).count();
    }
    atPace(1000, seconds, move);
    for (std::size_t i = 0; i < count; ++i) {
        costs.at(i) += Milliseconds(desktop::cpuTime(processes.at(i))).count();
        costs.at(i) /= seconds;
    }
    return costs;
}

} // namespace vantrel::bench
