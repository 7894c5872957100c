#include "measurements.h"

#include "motion_latencies.h"
#include "tray_desktop.h"

#include "testdesk/wait.h"

#include <stdexcept>

#include <X11/keysym.h>

namespace vantrel::bench {
namespace {

constexpr desktop::PixelPoint shortcutPlace{300, 300};

// From the press to the picture under the resting pointer, from Off to Highlight each time. It
// starts and ends in Highlight.
Samples shortcutLatencies(BenchDesktop& desktop, int count) {
    desktop.input.moveTo(shortcutPlace);
    const auto is = [&](auto condition) {
        return desktop::waitFor(
            [&] { return condition(desktop::pixelAt(desktop.connection, shortcutPlace)); });
    };
    is([&](auto color) { return color != desktop.background; });
    const std::uint32_t covered = desktop::pixelAt(desktop.connection, shortcutPlace);
    desktop.input.pressKey(XK_Control_L);
    desktop.input.pressKey(XK_Alt_L);
    Pause pause;
    Samples samples;
    for (int i = 0; i < count; ++i) {
        desktop.input.typeChord({'h'});
        is([&](auto color) { return color == desktop.background; });
        pause.take();
        const auto begin = Clock::now();
        desktop.input.pressKey('h');
        samples.push_back(
            timeToChange(desktop.connection, {shortcutPlace}, {desktop.background}, begin).count());
        desktop.input.releaseKey('h');
        is([&](auto color) { return color == covered; });
    }
    desktop.input.releaseKey(XK_Alt_L);
    desktop.input.releaseKey(XK_Control_L);
    return samples;
}

Samples shortcutLatenciesOf(BenchDesktop& desktop, const Contender& contender, int count) {
    desktop.input.moveTo(shortcutPlace);
    const auto process = startAndAwait(desktop, contender);
    return shortcutLatencies(desktop, count);
}

Samples latenciesWithWindows(TrayDesktop& desktop, const TrayProgram& program, bool open,
                             int count) {
    const auto process = startInTray(desktop, program);
    if (open) {
        openPopup(desktop, program);
        openWindow(desktop, program);
        openPopup(desktop, program);
    }
    Samples samples = shortcutLatencies(desktop.bench, count);
    if (open && !bothOpen(desktop, program)) {
        throw std::runtime_error("a shortcut closes the panel or the settings");
    }
    return samples;
}

} // namespace

Report measureShortcut(const Contenders& contenders, const Effort& effort) {
    BenchDesktop desktop;
    const auto measure = [&](const Contender& contender) {
        return shortcutLatenciesOf(desktop, contender, effort.motionsInTurn);
    };
    const Comparison comparison = inTurns(
        effort.turns, [&] { return measure(contenders.programAtShortcut); },
        [&] { return measure(contenders.floorAtShortcut); });
    return {.rows = {summarize("shortcut to first pixel", "ms", comparison, median, 1.25)}};
}

Report measureSwitch(const Contenders& contenders, const Effort& effort) {
    if (!contenders.reacts) {
        return {};
    }
    TrayDesktop desktop;
    const auto program = rehearse(desktop, contenders.programAsApplication, true);
    const auto measure = [&](bool open) {
        return latenciesWithWindows(desktop, program, open, effort.motionsInTurn);
    };
    const Comparison comparison = inTurns(
        effort.turns, [&] { return measure(true); }, [&] { return measure(false); });
    return {.rows = {summarize("shortcut with panel, settings open / closed", "ms", comparison,
                               median, 1.2)}};
}

} // namespace vantrel::bench
