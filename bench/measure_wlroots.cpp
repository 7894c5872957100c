#include "measurements.h"

#include "motion_latencies.h"

#include "testdesk/pixel_watch.h"
#include "testdesk/vantrel_program.h"
#include "testdesk/wlroots_session.h"

#include <array>
#include <random>
#include <stdexcept>

namespace vantrel::bench {
namespace {

using namespace std::chrono_literals;

constexpr QPoint center(640, 360);

// sway with one display, and one contender at a time in it.
class SwayBench {
public:
    SwayBench() {
        desktop::writePreferences(session_.folder() / "config",
                                  desktop::preferencesShowing("highlight"));
        session_.moveTo(center);
        background_ = pixels_.pixel(center);
    }

    // Returns when the pointer is marked.
    [[nodiscard]] desktop::ChildProcess start(const std::vector<std::string>& command) {
        session_.moveTo(center - QPoint(300, 0));
        session_.moveTo(center);
        desktop::ChildProcess process({.arguments = command,
                                       .environment = session_.environment(),
                                       .errors = session_.folder() / "contender.err"});
        const auto deadline = Clock::now() + 20s;
        while (pixels_.pixel(center) == background_) {
            if (Clock::now() > deadline) {
                throw std::runtime_error("sway: no mark of " + command.front());
            }
            session_.moveBy({1, 0});
            session_.moveBy({-1, 0});
        }
        return process;
    }

    // Milliseconds from motion to the painted mark.
    [[nodiscard]] Samples latencies(int count) {
        std::mt19937 random(7);
        std::uniform_int_distribution<int> x(100, 1180);
        std::uniform_int_distribution<int> y(100, 620);
        Pause pause;
        Samples samples;
        QPoint place = center;
        while (samples.size() < static_cast<std::size_t>(count)) {
            const QPoint next(x(random), y(random));
            if ((next - place).manhattanLength() < 200) {
                continue;
            }
            pixels_.expect(next);
            pause.take();
            const auto begin = Clock::now();
            session_.moveBy(next - place);
            if (pixels_.differs(background_, 1s)) {
                samples.push_back(Milliseconds(Clock::now() - begin).count());
            }
            place = next;
        }
        session_.moveBy(center - place);
        return samples;
    }

    // Milliseconds of CPU time for each second of motion: the process's, and sway's.
    [[nodiscard]] std::array<double, 2> costs(pid_t process, double seconds) {
        const std::array<pid_t, 2> processes{process, session_.pid()};
        QPoint last = center;
        const auto costs = motionCosts(processes, seconds, [&](int step) {
            const auto [x, y] = onCircle(step, 200);
            const QPoint next = center + QPointF(x, y).toPoint();
            session_.moveBy(next - last);
            last = next;
        });
        session_.moveBy(center - last);
        return costs;
    }

private:
    desktop::WlrootsSession session_{desktop::Compositor::sway, {{.pixels = {1280, 720}}}};
    desktop::PixelWatch pixels_{session_.socket()};
    std::uint32_t background_ = 0;
};

} // namespace

Report measureSway(const Contenders& contenders, const Effort& effort) {
    if (!contenders.reacts) {
        return {};
    }
    if (!desktop::followsPointers(desktop::Compositor::sway)) {
        std::fprintf(stderr, "no sway that tells where the pointer is: scripts/test-sway\n");
        return {};
    }
    const auto here = std::filesystem::canonical("/proc/self/exe").parent_path();
    const std::vector<std::string> follower{here / "vantrel_layer_follower"};
    SwayBench sway;
    Comparison latency;
    std::array<Comparison, 2> cost;
    for (int turn = 0; turn < (effort.turns + 1) * 2 / 3; ++turn) {
        for (const bool isProgram : {true, false}) {
            const auto side = isProgram ? &Comparison::program : &Comparison::floor;
            const auto process = sway.start(isProgram ? contenders.program.command : follower);
            (latency.*side).push_back(sway.latencies(effort.motionsInTurn));
            // It is little: sixty frames a second, all of them cold.
            const auto costs = sway.costs(process.pid(), 2 * effort.secondsInTurn);
            for (std::size_t i = 0; i < cost.size(); ++i) {
                (cost.at(i).*side).push_back({costs.at(i)});
            }
        }
    }
    return {.rows = {summarize("sway, motion to painted mark, median", "ms", latency, median, 1.15),
                     summarize("sway, 1000 motions/s, CPU of the program", "ms/s", cost[0], median,
                               1.5),
                     summarize("sway, 1000 motions/s, CPU of sway", "ms/s", cost[1], median)},
            .checks = {}};
}

} // namespace vantrel::bench
