#include "measurements.h"

#include "testdesk/usage.h"
#include "testdesk/wait.h"
#include "testdesk/x_traffic.h"

namespace vantrel::bench {
namespace {

using namespace std::chrono_literals;
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

// Without rings the costs would say nothing. One shows first inside the disc, a little from the
// pointer.
Check ringsAppear(BenchDesktop& desktop, const Contender& contender) {
    desktop.input.moveTo(placeAt(0));
    const auto process = startAndAwait(desktop, contender);
    const desktop::PixelPoint near{placeAt(0).x + 20, placeAt(0).y};
    std::uint32_t covered = desktop.background;
    desktop::waitFor([&] {
        covered = desktop::pixelAt(desktop.connection, near);
        return covered != desktop.background;
    });
    desktop.input.click();
    const bool appeared = desktop::waitFor(
        [&] { return desktop::pixelAt(desktop.connection, near) != covered; }, 500ms);
    return {.name = "a click shows a ring", .met = appeared, .found = appeared ? "yes" : "no"};
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
    Report report{.rows = {summarize("eight clicks on three displays / plain motion", "ms/s",
                                     comparison, median)},
                  .checks = {framesMissed(contenders.programAtRest, 5 * effort.secondsInTurn)}};
    if (contenders.reacts) {
        report.checks.push_back(ringsAppear(desktop, contenders.programAtRest));
    }
    return report;
}

} // namespace vantrel::bench
