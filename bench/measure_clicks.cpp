#include "measurements.h"

#include "desktop/harness/usage.h"
#include "desktop/harness/x_traffic.h"

#include <xcb/present.h>

namespace vantrel::bench {
namespace {

using desktop::SyntheticInput;

constexpr double motionsPerSecond = 500;
// A ripple lives for 0.3 s, so at this pace about eight of them always do.
constexpr int motionsPerClick = 18;

// To and fro over the border of the first two of three displays.
desktop::PixelPoint placeAt(int step) {
    const int phase = step % 800;
    return {1720 + (phase < 400 ? phase : 800 - phase), 540};
}

void play(BenchDesktop& desktop, double seconds, bool clicks) {
    atPace(motionsPerSecond, seconds, [&](int step) {
        desktop.input.moveTo(placeAt(step), SyntheticInput::Wait::no);
        if (clicks && step % motionsPerClick == 0) {
            desktop.input.click();
        }
    });
}

Samples costOf(BenchDesktop& desktop, const Contender& contender, double seconds, bool clicks) {
    desktop.input.moveTo(placeAt(0));
    const auto process = startAndAwait(desktop, contender);
    play(desktop, 0.4, clicks); // warms up
    const auto before = desktop::cpuTime(process.pid());
    play(desktop, seconds, clicks);
    const Milliseconds cost = desktop::cpuTime(process.pid()) - before;
    desktop.input.moveTo(placeAt(0));
    return {cost.count() / seconds};
}

// The display link's frames that passed without being asked for in time.
Check framesMissed(const Contender& contender, double seconds) {
    BenchDesktop desktop(3);
    const desktop::XTraffic traffic(desktop.server.display());
    desktop.input.moveTo(placeAt(0));
    const auto process = startAndAwait(desktop, contender, traffic.display());
    play(desktop, 0.5, true);
    const desktop::TrafficCounts before = traffic.counts();
    play(desktop, seconds, true);
    const desktop::TrafficCounts counts = traffic.counts() - before;
    const std::uint64_t missed = desktop::missedFrames(counts);
    return {.name = "frames with eight clicks on three displays",
            .met = !counts.frames.empty() && missed == 0,
            .found = std::to_string(counts.frames.size()) + " seen, " + std::to_string(missed) +
                     " missed"};
}

} // namespace

Report measureClicks(const Contenders& contenders, const Effort& effort) {
    BenchDesktop desktop(3);
    const Comparison comparison = inTurns(
        effort.turns,
        [&] { return costOf(desktop, contenders.programAtRest, effort.secondsInTurn, true); },
        [&] { return costOf(desktop, contenders.programAtRest, effort.secondsInTurn, false); });
    return {.rows = {summarize("eight clicks on three displays / plain motion", "ms/s", comparison,
                               median)},
            .checks = {framesMissed(contenders.programAtRest, effort.secondsInTurn)}};
}

} // namespace vantrel::bench
