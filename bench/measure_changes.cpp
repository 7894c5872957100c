#include "measurements.h"

#include "core_program.h"
#include "motion_latencies.h"

#include "testdesk/wait.h"

#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <array>
#include <atomic>
#include <system_error>
#include <thread>

#include <sys/inotify.h>
#include <unistd.h>

namespace vantrel::bench {
namespace {

using namespace std::chrono_literals;

constexpr int changesPerSecond = 1000;
constexpr desktop::PixelPoint restingPlace{960, 540};

void runEvents(std::chrono::milliseconds time) {
    QEventLoop loop;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    timer.start(time);
    loop.exec();
}

void awaitMark(const BenchDesktop& desktop) {
    while (desktop::pixelAt(desktop.connection, restingPlace) == desktop.background) {
        runEvents(2ms);
    }
}

// How often a document took the place of the former one.
class Replacements {
public:
    explicit Replacements(const std::filesystem::path& document)
        : descriptor_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        if (inotify_add_watch(descriptor_, document.parent_path().c_str(), IN_MOVED_TO) < 0) {
            throw std::system_error(errno, std::generic_category(), "cannot watch the document");
        }
    }
    ~Replacements() { close(descriptor_); }
    Replacements(const Replacements&) = delete;
    Replacements& operator=(const Replacements&) = delete;

    int count() {
        alignas(inotify_event) std::array<char, 4096> buffer{};
        for (ssize_t size = 0; (size = read(descriptor_, buffer.data(), buffer.size())) > 0;) {
            for (ssize_t at = 0; at < size; ++count_) {
                const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + at);
                at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
            }
        }
        return count_;
    }

private:
    int descriptor_;
    int count_ = 0;
};

// Drags a slider whose value shows: the disc grows and shrinks around its centre.
class Slider {
public:
    Slider(AppState& state, double smallest) : state_(state), smallest_(smallest) {
        timer_.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { change(); });
        timer_.start(1ms);
    }
    [[nodiscard]] int changes() const { return changes_; }

private:
    // One for each millisecond that has passed, also when the timer is late.
    void change() {
        const auto due = (Clock::now() - begin_) * changesPerSecond / 1s;
        for (; changes_ < due; ++changes_) {
            state_.changePreferences([this](AppPreferences& preferences) {
                preferences.highlight.diameter = smallest_ + changes_ % 50;
            });
        }
    }

    AppState& state_;
    double smallest_; // points
    QTimer timer_;
    Clock::time_point begin_ = Clock::now();
    int changes_ = 0;
};

// The events of the program run here while the pointer is moved and watched from a thread.
Samples latenciesDuringEvents(BenchDesktop& desktop, double seconds) {
    Samples samples;
    std::atomic<bool> done = false;
    const std::jthread mover([&] {
        const auto end = Clock::now() + std::chrono::duration<double>(seconds);
        while (Clock::now() < end) {
            std::ranges::copy(motionLatencies(desktop, 10), std::back_inserter(samples));
        }
        done = true;
    });
    while (!done) {
        runEvents(2ms);
    }
    return samples;
}

struct Drag {
    Samples latencies;
    int changes = 0;
    int savesDuring = 0;
    int savesInAll = 0;
};

Drag drag(BenchDesktop& desktop, double seconds, double smallest) {
    desktop.input.moveTo(restingPlace);
    CoreProgram program(desktop);
    awaitMark(desktop);
    Replacements saves(storedDocument(desktop));
    Drag result;
    {
        const Slider slider(program.state(), smallest);
        result.latencies = latenciesDuringEvents(desktop, seconds);
        result.changes = slider.changes();
    }
    result.savesDuring = saves.count();
    runEvents(500ms);
    result.savesInAll = saves.count();
    return result;
}

Samples latenciesAtRest(BenchDesktop& desktop, double seconds) {
    desktop.input.moveTo(restingPlace);
    const CoreProgram program(desktop);
    awaitMark(desktop);
    return latenciesDuringEvents(desktop, seconds);
}

Check oneSave(const std::vector<Drag>& drags) {
    const auto savedOnce = [](const Drag& drag) {
        return drag.savesDuring == 0 && drag.savesInAll == 1;
    };
    const auto worst = std::ranges::find_if_not(drags, savedOnce);
    const Drag& shown = worst == drags.end() ? drags.front() : *worst;
    return {.name = "a dragged slider is saved once",
            .met = worst == drags.end(),
            .found = std::to_string(shown.changes) + " changes, " +
                     std::to_string(shown.savesDuring) + " saves during and " +
                     std::to_string(shown.savesInAll) + " in all"};
}

// Two frames at most, which nobody sees.
Check followed(const std::vector<Drag>& drags) {
    constexpr double longest = 34;
    Samples all;
    for (const Drag& drag : drags) {
        all.insert(all.end(), drag.latencies.begin(), drag.latencies.end());
    }
    const double slowest = quantile(all, 1);
    return {.name = "the pointer is followed meanwhile",
            .met = slowest <= longest,
            .found = std::to_string(all.size()) + " motions, the slowest after " +
                     std::to_string(slowest) + " ms"};
}

// Microseconds for one.
template <typename Action>
double timeOf(Action action) {
    constexpr int count = 500;
    const auto begin = Clock::now();
    for (int i = 0; i < count; ++i) {
        action(i);
    }
    return std::chrono::duration<double, std::micro>(Clock::now() - begin).count() / count;
}

} // namespace

Report measureSlider(const Contenders&, const Effort& effort) {
    BenchDesktop desktop;
    std::vector<Drag> drags;
    const double seconds = 5 * effort.secondsInTurn;
    const Comparison comparison = inTurns(
        std::max(1, effort.turns / 3),
        [&] {
            // What the one before has left there would not be saved again.
            const double smallest = 64 + static_cast<double>(drags.size()) / 100;
            drags.push_back(drag(desktop, seconds, smallest));
            return drags.back().latencies;
        },
        [&] { return latenciesAtRest(desktop, seconds); });
    const auto p95 = [](const Samples& samples) { return quantile(samples, 0.95); };
    return {.rows = {summarize("motion to first pixel, slider / rest", "ms", comparison, median),
                     summarize("the same, 95th percentile", "ms", comparison, p95)},
            .checks = {oneSave(drags), followed(drags)}};
}

Report measureChange(const Contenders&, const Effort& effort) {
    BenchDesktop desktop;
    desktop.input.moveTo(restingPlace);
    CoreProgram program(desktop);
    awaitMark(desktop);
    const auto change = [&](int i) {
        program.state().changePreferences([i](AppPreferences& preferences) {
            preferences.highlight.idleSeconds = 1 + i % 2; // shows nowhere
        });
    };
    const Comparison comparison = inTurns(
        10 * effort.turns,
        [&] {
            runEvents(20ms);
            return Samples{timeOf(change)};
        },
        [&] {
            runEvents(20ms);
            return Samples{timeOf([&](int) { program.roundTrip(); })};
        });
    return {
        .rows = {summarize("change of a preference / round trip", "us", comparison, median, 4)}};
}

} // namespace vantrel::bench
