#include "measurements.h"

#include "motion_latencies.h"

#include <array>

namespace vantrel::bench {
namespace {

Samples latencies(BenchDesktop& desktop, const Contender& contender, int count) {
    desktop.input.moveTo({960, 540});
    const auto process = startAndAwait(desktop, contender);
    return motionLatencies(desktop, count);
}

desktop::PixelPoint placeAt(int step) {
    const auto [x, y] = onCircle(step, 400);
    return {static_cast<int>(960 + x), static_cast<int>(540 + y)};
}

// Milliseconds of CPU time for each second: the program's, the server's, the compositing manager's.
using Costs = std::array<double, 3>;

Costs costsOf(BenchDesktop& desktop, const Contender& contender, double seconds) {
    desktop.input.moveTo(placeAt(0));
    const auto process = startAndAwait(desktop, contender);
    const std::array<pid_t, 3> processes{process.pid(), desktop.server.pid(),
                                         desktop.compositingManager.pid()};
    const Costs costs = motionCosts(processes, seconds, [&](int step) {
        desktop.input.moveTo(placeAt(step), desktop::SyntheticInput::Wait::no);
    });
    desktop.input.moveTo(placeAt(0));
    return costs;
}

} // namespace

Report measureLatency(const Contenders& contenders, const Effort& effort) {
    BenchDesktop desktop;
    const Comparison comparison = inTurns(
        effort.turns, [&] { return latencies(desktop, contenders.program, effort.motionsInTurn); },
        [&] { return latencies(desktop, contenders.floor, effort.motionsInTurn); });
    const auto at = [](double fraction) {
        return [fraction](const Samples& samples) { return quantile(samples, fraction); };
    };
    return {.rows = {summarize("motion to first pixel, median", "ms", comparison, at(0.5), 1.15),
                     summarize("motion to first pixel, 95th percentile", "ms", comparison, at(0.95),
                               1.3)}};
}

Report measureMotion(const Contenders& contenders, const Effort& effort) {
    BenchDesktop desktop;
    std::array<Comparison, 3> comparisons;
    for (int turn = 0; turn < effort.turns; ++turn) {
        const Costs program = costsOf(desktop, contenders.program, effort.secondsInTurn);
        const Costs floor = costsOf(desktop, contenders.floor, effort.secondsInTurn);
        for (std::size_t i = 0; i < comparisons.size(); ++i) {
            comparisons[i].program.push_back({program[i]});
            comparisons[i].floor.push_back({floor[i]});
        }
    }
    const std::string unit = "ms/s";
    return {
        .rows = {
            summarize("1000 motions/s, CPU of the program", unit, comparisons[0], median, 1.5),
            summarize("1000 motions/s, CPU of the X server", unit, comparisons[1], median, 1.2),
            summarize("1000 motions/s, CPU of the compositor", unit, comparisons[2], median, 1.2)}};
}

} // namespace vantrel::bench
