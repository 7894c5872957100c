#include "measurements.h"

#include "desktop/harness/usage.h"

#include <thread>

namespace vantrel::bench {
namespace {

constexpr double bytesPerMebibyte = 1024 * 1024;

struct Held {
    double memory = 0;       // MiB
    double serverMemory = 0; // MiB of pixmaps and window contents
};

Held heldBy(BenchDesktop& desktop, const Contender& contender, double seconds) {
    desktop.input.moveTo({960, 540});
    const auto process = startAndAwait(desktop, contender);
    atPace(200, seconds, [&](int step) { desktop.input.moveTo({960 + step % 100, 540}); });
    const desktop::ServerResources resources =
        desktop::serverResources(desktop.connection, process.pid());
    return {.memory =
                static_cast<double>(desktop::proportionalBytes(process.pid())) / bytesPerMebibyte,
            .serverMemory = static_cast<double>(resources.pixmapBytes) / bytesPerMebibyte};
}

Samples startOf(BenchDesktop& desktop, const Contender& contender) {
    desktop.input.moveTo({960, 540});
    Milliseconds time{};
    const auto process = startAndAwait(desktop, contender, {}, &time);
    return {time.count()};
}

} // namespace

Report measureMemory(const Contenders& contenders, const Effort& effort) {
    BenchDesktop desktop;
    Comparison memory;
    Comparison serverMemory;
    for (int turn = 0; turn < effort.turns; ++turn) {
        const Held program = heldBy(desktop, contenders.programAsApplication, effort.secondsInTurn);
        const Held empty = heldBy(desktop, contenders.emptyApplication, effort.secondsInTurn);
        memory.program.push_back({program.memory});
        memory.floor.push_back({empty.memory});
        serverMemory.program.push_back({program.serverMemory});
        serverMemory.floor.push_back({empty.serverMemory});
    }
    return {.rows = {summarize("memory / empty application", "MiB", memory, median),
                     summarize("server memory / empty application", "MiB", serverMemory, median)}};
}

Report measureStart(const Contenders& contenders, const Effort& effort) {
    BenchDesktop desktop;
    // The first start of each reads the disk.
    startOf(desktop, contenders.programAsApplication);
    startOf(desktop, contenders.emptyApplication);
    const Comparison comparison = inTurns(
        effort.starts, [&] { return startOf(desktop, contenders.programAsApplication); },
        [&] { return startOf(desktop, contenders.emptyApplication); });
    return {.rows = {summarize("start to first pixel / empty application", "ms", comparison, median,
                               1.3)}};
}

} // namespace vantrel::bench
