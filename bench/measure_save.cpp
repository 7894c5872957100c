#include "measurements.h"

#include "testdesk/wait.h"
#include "testdesk/x_traffic.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include <X11/keysym.h>

namespace vantrel::bench {
namespace {

// A disk that takes its time, for a program that is started through it.
class SlowDisk {
public:
    explicit SlowDisk(std::filesystem::path sign) : sign_(std::move(sign)) {}
    ~SlowDisk() { release(); }
    SlowDisk(const SlowDisk&) = delete;
    SlowDisk& operator=(const SlowDisk&) = delete;

    [[nodiscard]] Contender startedThroughIt(Contender program) const {
        program.command.insert(program.command.begin(),
                               {"env", std::string("LD_PRELOAD=") + VANTREL_SLOW_DISK_MODULE,
                                "VANTREL_SLOW_DISK=" + sign_.string()});
        return program;
    }
    void hold() const { std::ofstream{sign_}; }
    void release() const { std::filesystem::remove(sign_); }

private:
    std::filesystem::path sign_;
};

} // namespace

Report measureSave(const Contenders& contenders, const Effort& effort) {
    if (!contenders.reacts) {
        return {};
    }
    BenchDesktop desktop;
    const desktop::XTraffic traffic(desktop.server.display());
    desktop.input.moveTo({960, 540});
    const SlowDisk disk(desktop.server.folder() / "slow-disk");
    const auto process =
        startAndAwait(desktop, disk.startedThroughIt(contenders.program), traffic.display());
    const auto play = [&](double seconds) {
        atPace(500, seconds, [&](int step) {
            desktop.input.moveTo({960 + step % 100, 540}, desktop::SyntheticInput::Wait::no);
        });
    };
    const auto stored = [&] { return desktop::readFile(storedDocument(desktop)); };
    play(0.3);
    const std::string former = stored();
    const desktop::TrafficCounts before = traffic.counts();
    disk.hold();
    desktop.input.typeChord({XK_Control_L, XK_Alt_L, 'l'});
    play(0.3 + 3 * effort.secondsInTurn);
    const desktop::TrafficCounts counts = traffic.counts() - before;
    const bool heldUp = stored() == former;
    disk.release();
    const bool saved = desktop::waitFor([&] { return stored() != former; });
    const std::uint64_t missed = desktop::missedFrames(counts);
    return {.checks = {{.name = "frames during a save on a slow disk",
                        .met = heldUp && saved && !counts.frames.empty() && missed <= 1,
                        .found = std::to_string(counts.frames.size()) + " seen, " +
                                 std::to_string(missed) + " missed; " +
                                 (heldUp && saved ? "saved afterwards" : "NOT held up")}}};
}

} // namespace vantrel::bench
