#include "measurements.h"

#include "tray_desktop.h"

#include "testdesk/usage.h"

namespace vantrel::bench {
namespace {

constexpr double bytesPerMebibyte = 1024 * 1024;

struct Held {
    double memory = 0;       // MiB
    double serverMemory = 0; // MiB of pixmaps and window contents
};

double memoryOf(const desktop::ChildProcess& process) {
    return static_cast<double>(desktop::proportionalBytes(process.pid())) / bytesPerMebibyte;
}

// Nothing of it was opened yet.
Held heldBy(TrayDesktop& desktop, const TrayProgram& program, double seconds) {
    const auto process = startInTray(desktop, program);
    atPace(200, seconds, [&](int step) { desktop.bench.input.moveTo({960 + step % 100, 540}); });
    const desktop::ServerResources resources =
        desktop::serverResources(desktop.bench.connection, process.pid());
    return {.memory = memoryOf(process),
            .serverMemory = static_cast<double>(resources.pixmapBytes) / bytesPerMebibyte};
}

Samples startOf(TrayDesktop& desktop, const TrayProgram& program) {
    Milliseconds time{};
    const auto process = startInTray(desktop, program, &time);
    return {time.count()};
}

} // namespace

Report measureMemory(const Contenders& contenders, const Effort& effort) {
    TrayDesktop desktop;
    const auto program = rehearse(desktop, contenders.programAsApplication, contenders.reacts);
    const auto empty = rehearse(desktop, contenders.emptyTray, false);
    Comparison memory;
    Comparison serverMemory;
    for (int turn = 0; turn < effort.turns; ++turn) {
        const Held held = heldBy(desktop, program, effort.secondsInTurn);
        const Held heldByEmpty = heldBy(desktop, empty, effort.secondsInTurn);
        memory.program.push_back({held.memory});
        memory.floor.push_back({heldByEmpty.memory});
        serverMemory.program.push_back({held.serverMemory});
        serverMemory.floor.push_back({heldByEmpty.serverMemory});
    }
    return {
        .rows = {summarize("memory / empty tray application", "MiB", memory, median, 1.3),
                 summarize("server memory / empty tray application", "MiB", serverMemory, median)}};
}

Report measureStart(const Contenders& contenders, const Effort& effort) {
    TrayDesktop desktop;
    const auto program = rehearse(desktop, contenders.programAsApplication, contenders.reacts);
    const auto empty = rehearse(desktop, contenders.emptyTray, false);
    const Comparison comparison = inTurns(
        effort.starts, [&] { return startOf(desktop, program); },
        [&] { return startOf(desktop, empty); });
    return {.rows = {summarize("start to icon and mode / empty tray app.", "ms", comparison, median,
                               1.35)}};
}

} // namespace vantrel::bench
