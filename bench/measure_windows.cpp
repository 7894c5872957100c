#include "measurements.h"

#include "tray_desktop.h"

#include "testdesk/vantrel_program.h"

namespace vantrel::bench {
namespace {

// The largest panel, and nothing that moves on its own while it is opened.
void playNoClicks(const TrayDesktop& desktop) {
    auto preferences = desktop::preferencesShowing("highlight");
    preferences["click"]["style"] = "none";
    desktop::writePreferences(desktop.bench.server.environment().at("XDG_CONFIG_HOME"),
                              preferences);
}

// The first time that something is opened after a start, and the times after it.
struct Openings {
    Comparison first;
    Comparison later;
};

struct OneStart {
    Samples first;
    Samples later;
};

using MeasureStart = std::function<OneStart(const TrayProgram&)>;

Openings openingsInTurns(TrayDesktop& desktop, const Contenders& contenders, int starts,
                         const MeasureStart& measure) {
    playNoClicks(desktop);
    const auto program = rehearse(desktop, contenders.programAsApplication, false);
    const auto empty = rehearse(desktop, contenders.emptyTray, false);
    Openings openings;
    for (int i = 0; i < starts; ++i) {
        const OneStart one = measure(program);
        const OneStart other = measure(empty);
        openings.first.program.push_back(one.first);
        openings.first.floor.push_back(other.first);
        openings.later.program.push_back(one.later);
        openings.later.floor.push_back(other.later);
    }
    return openings;
}

OneStart popupOpenings(TrayDesktop& desktop, const TrayProgram& program, int later) {
    const auto process = startInTray(desktop, program);
    OneStart result{.first = {openPopup(desktop, program).count()}, .later = {}};
    for (int i = 0; i < later; ++i) {
        closePopup(desktop, program);
        result.later.push_back(openPopup(desktop, program).count());
    }
    return result;
}

OneStart windowOpenings(TrayDesktop& desktop, const TrayProgram& program, int later) {
    const auto process = startInTray(desktop, program);
    const auto openOnce = [&] {
        openPopup(desktop, program);
        const double time = openWindow(desktop, program).count();
        closeWindow(desktop, program);
        return time;
    };
    OneStart result{.first = {openOnce()}, .later = {}};
    for (int i = 0; i < later; ++i) {
        result.later.push_back(openOnce());
    }
    return result;
}

Usage usageAfter(TrayDesktop& desktop, const TrayProgram& program,
                 const desktop::ChildProcess& process, int rounds) {
    for (int i = 0; i < rounds; ++i) {
        openPopup(desktop, program);
        closePopup(desktop, program);
        openPopup(desktop, program);
        openWindow(desktop, program);
        closeWindow(desktop, program);
    }
    return usageOf(desktop, process);
}

} // namespace

Report measurePopup(const Contenders& contenders, const Effort& effort) {
    TrayDesktop desktop;
    const Openings openings =
        openingsInTurns(desktop, contenders, effort.windowStarts, [&](const TrayProgram& program) {
            return popupOpenings(desktop, program, effort.openings);
        });
    return {.rows = {
                summarize("click to panel, first / empty popup", "ms", openings.first, median, 4),
                summarize("click to panel, later / empty popup", "ms", openings.later, median, 2)}};
}

Report measureSettings(const Contenders& contenders, const Effort& effort) {
    TrayDesktop desktop;
    const Openings openings =
        openingsInTurns(desktop, contenders, effort.windowStarts, [&](const TrayProgram& program) {
            return windowOpenings(desktop, program, effort.openings);
        });
    return {
        .rows = {
            summarize("keys to settings, first / empty window", "ms", openings.first, median, 6),
            summarize("keys to settings, later / empty window", "ms", openings.later, median, 2)}};
}

Report measureReopening(const Contenders& contenders, const Effort& effort) {
    TrayDesktop desktop;
    playNoClicks(desktop);
    const auto program = rehearse(desktop, contenders.programAsApplication, false);
    const auto process = startInTray(desktop, program);
    const Usage before = usageAfter(desktop, program, process, effort.reopenings / 5);
    const Usage after = usageAfter(desktop, program, process, effort.reopenings);
    return {.checks = {{.name = "opened and closed " + std::to_string(effort.reopenings) + " times",
                        .met = !after.exceeds(before),
                        .found = describe(before, after)}}};
}

} // namespace vantrel::bench
