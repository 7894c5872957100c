#include "measurements.h"

#include "motion_latencies.h"

#include "desktop/harness/wait.h"

#include <X11/keysym.h>

namespace vantrel::bench {
namespace {

// From the press to the picture under the resting pointer, from Off to Highlight each time. It ends
// in Highlight, which is the mode that the next start shows.
Samples shortcutLatencies(BenchDesktop& desktop, const Contender& contender, int count) {
    constexpr desktop::PixelPoint place{960, 540};
    desktop.input.moveTo(place);
    const auto process = startAndAwait(desktop, contender);
    const auto is = [&](std::uint32_t color) {
        return desktop::waitFor(
            [&] { return desktop::pixelAt(desktop.connection, place) == color; });
    };
    const std::uint32_t covered = desktop::pixelAt(desktop.connection, place);
    desktop.input.pressKey(XK_Control_L);
    desktop.input.pressKey(XK_Alt_L);
    Pause pause;
    Samples samples;
    for (int i = 0; i < count; ++i) {
        desktop.input.typeChord({'h'});
        is(desktop.background);
        pause.take();
        const auto begin = Clock::now();
        desktop.input.pressKey('h');
        samples.push_back(
            timeToChange(desktop.connection, {place}, {desktop.background}, begin).count());
        desktop.input.releaseKey('h');
        is(covered);
    }
    desktop.input.releaseKey(XK_Alt_L);
    desktop.input.releaseKey(XK_Control_L);
    return samples;
}

Samples motionLatenciesOf(BenchDesktop& desktop, const Contender& contender, int count) {
    desktop.input.moveTo({960, 540});
    const auto process = startAndAwait(desktop, contender);
    return motionLatencies(desktop, count);
}

} // namespace

Report measureShortcut(const Contenders& contenders, const Effort& effort) {
    if (!contenders.reacts) {
        return {};
    }
    BenchDesktop desktop;
    const Comparison comparison = inTurns(
        effort.turns,
        [&] { return shortcutLatencies(desktop, contenders.program, effort.motionsInTurn); },
        [&] { return motionLatenciesOf(desktop, contenders.program, effort.motionsInTurn); });
    return {.rows = {summarize("shortcut to first pixel / motion", "ms", comparison, median, 2)}};
}

} // namespace vantrel::bench
