#include "measurements.h"

#include "testdesk/wait.h"
#include "testdesk/x_traffic.h"

#include <system_error>

#include <X11/keysym.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace vantrel::bench {
namespace {

// The program writes to this file first and waits for its lock: a disk that takes its time.
class SlowDisk {
public:
    explicit SlowDisk(const std::filesystem::path& document)
        : descriptor_(
              open((document.parent_path() / ("." + document.filename().string() + ".new")).c_str(),
                   O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR)) {
        if (flock(descriptor_, LOCK_EX) != 0) {
            throw std::system_error(errno, std::generic_category(), "cannot hold up a save");
        }
    }
    ~SlowDisk() { close(descriptor_); }
    SlowDisk(const SlowDisk&) = delete;
    SlowDisk& operator=(const SlowDisk&) = delete;

private:
    int descriptor_;
};

} // namespace

Report measureSave(const Contenders& contenders, const Effort& effort) {
    if (!contenders.reacts) {
        return {};
    }
    BenchDesktop desktop;
    const desktop::XTraffic traffic(desktop.server.display());
    desktop.input.moveTo({960, 540});
    const auto process = startAndAwait(desktop, contenders.program, traffic.display());
    const auto play = [&](double seconds) {
        atPace(500, seconds, [&](int step) {
            desktop.input.moveTo({960 + step % 100, 540}, desktop::SyntheticInput::Wait::no);
        });
    };
    const auto stored = [&] { return desktop::readFile(storedDocument(desktop)); };
    play(0.3);
    const std::string former = stored();
    const desktop::TrafficCounts before = traffic.counts();
    desktop::TrafficCounts counts;
    {
        const SlowDisk disk(storedDocument(desktop));
        desktop.input.typeChord({XK_Control_L, XK_Alt_L, 'l'});
        play(0.3 + 3 * effort.secondsInTurn);
        counts = traffic.counts() - before;
    }
    const bool heldUp = stored() == former;
    const bool saved = desktop::waitFor([&] { return stored() != former; });
    const std::uint64_t missed = desktop::missedFrames(counts);
    return {.checks = {{.name = "frames during a save on a slow disk",
                        .met = heldUp && saved && !counts.frames.empty() && missed <= 1,
                        .found = std::to_string(counts.frames.size()) + " seen, " +
                                 std::to_string(missed) + " missed; " +
                                 (heldUp && saved ? "saved afterwards" : "NOT held up")}}};
}

} // namespace vantrel::bench
