#include "bus_traffic.h"
#include "measurements.h"

#include "overlay/effect.h"
#include "platform/gnome/effect_message.h"
#include "platform/gnome/shell_report.h"
#include "testdesk/gnome_session.h"
#include "testdesk/program_of.h"
#include "testdesk/usage.h"
#include "testdesk/vantrel_program.h"
#include "testdesk/wait.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <optional>
#include <sstream>
#include <stdexcept>

#include <linux/input-event-codes.h>

namespace vantrel::bench {
namespace {

constexpr auto agent = "org.vantrel.Marks1";

// GNOME Shell with the extension of the program.
class ShellBench : public desktop::GnomeSession {
public:
    explicit ShellBench(const std::filesystem::path& dataFolder)
        : GnomeSession({.dataFolder = dataFolder}) {
        switchExtension(extensionFor(QString::number(version())), true);
        moveTo(640, 520);
    }

    void show(const std::optional<Effect>& effect) const {
        const auto path = QStringLiteral("/org/vantrel/Marks1");
        if (effect) {
            call(agent, path, agent, "Show", {messageOf(*effect)});
        } else {
            call(agent, path, agent, "Clear");
        }
    }
    void moveAlong(int step) const {
        const auto [x, y] = onCircle(step, 1);
        moveBy(x, y);
    }
    // On a circle, 1000 times a second.
    void move(double seconds) const {
        atPace(1000, seconds, [&](int step) { moveAlong(step); });
    }
    // Milliseconds of CPU time of the shell for each second of motion.
    [[nodiscard]] Samples motionCost(double seconds) const {
        const auto costs =
            motionCosts(std::array{pid()}, seconds, [&](int step) { moveAlong(step); });
        return {costs.front()};
    }
    // Of frames of motion, those that were painted with the mark elsewhere than where the shell had
    // the pointer as it began with the frame. It moves on in the meantime.
    [[nodiscard]] Check misplacedFrames(double seconds) const {
        const std::string watch = R"(
            const tracker = global.backend.get_cursor_tracker?.() ??
                imports.gi.Meta.CursorTracker.get_for_display(global.display);
            const found = global.vantrelFrames ??= {all: 0, apart: 0, signals: []};
            const on = (signal, handler) => found.signals.push(global.stage.connect(signal, handler));
            const note = when => on('prepare-frame', () => [found[when]] = tracker.get_pointer());
        )";
        // Before the extension has its turn, for which it must not have begun yet, and after it.
        show({});
        evaluate(watch + "note('before'); 1");
        show(effectOf(CursorMode::laser, {}));
        evaluate(watch + R"(
            note('after');
            const mark = Main.layoutManager.uiGroup.get_children()
                .find(({name}) => name === 'vantrel').get_first_child();
            on('paint-view', () => {
                const {before, after} = found;
                const x = mark.translation_x + mark.width / 2;
                const y = mark.translation_y + mark.height / 2;
                const way = Math.hypot(after.x - before.x, after.y - before.y);
                const detour = Math.hypot(x - before.x, y - before.y) +
                    Math.hypot(x - after.x, y - after.y) - way;
                found.all++;
                found.apart += detour > 2 ? 1 : 0; // and not for being on whole pixels
            });
            1)");
        move(seconds);
        const auto found =
            evaluate("global.vantrelFrames.signals.forEach(id => global.stage.disconnect(id));"
                     "global.vantrelFrames");
        const int all = found.at("all");
        const int apart = found.at("apart");
        return {.name = "frames in GNOME with the mark behind",
                .met = all > 0 && apart == 0,
                .found = textOf(apart, " of ", all)};
    }
    // What the shell holds after many changes and clicks, beyond what it held after several times
    // as many: drawing by software alone has it grow at first, with nothing of ours shown.
    [[nodiscard]] Check growth(int changes, int clicks) const {
        const auto heldAfterUse = [&] {
            AppPreferences preferences;
            for (int change = 0; change < changes; ++change) {
                preferences.highlight.diameter = 40 + change % 100;
                show(effectOf(CursorMode::highlight, preferences));
            }
            for (int press = 0; press < clicks; ++press) {
                click(BTN_LEFT);
            }
            evaluate("imports.system.gc(); 1");
            return static_cast<double>(desktop::proportionalBytes(pid())) / (1 << 20);
        };
        Samples held(4);
        std::ranges::generate(held, heldAfterUse);
        const double before = held.at(held.size() - 2);
        constexpr double most = 16; // a picture kept for each change would be a hundred
        return {.name = "GNOME, memory after changes and clicks",
                .met = held.back() - before < most,
                .found = textOf(held.back() - before, " MB more than ", before)};
    }

private:
    [[nodiscard]] static std::string textOf(const auto&... parts) {
        std::ostringstream text;
        text << std::setprecision(3);
        (text << ... << parts);
        return text.str();
    }
};

// Of the mark of a program that is started in the shell.
class MarkTimes {
public:
    MarkTimes(const ShellBench& shell, std::string program)
        : shell_(shell), program_(shell, std::move(program)) {
        shell_.evaluate(R"(
            const found = global.vantrelMark = {has: false, at: 0};
            found.signal = global.stage.connect('paint-view', () => {
                const has = Main.layoutManager.uiGroup.get_children()
                    .some(({name}) => name === 'vantrel');
                if (has && !found.has)
                    found.at = imports.gi.GLib.get_monotonic_time();
                found.has = has;
            });
            1)");
    }
    ~MarkTimes() { shell_.evaluate("global.stage.disconnect(global.vantrelMark.signal); 1"); }
    MarkTimes(const MarkTimes&) = delete;
    MarkTimes& operator=(const MarkTimes&) = delete;

    // From the start of a command to the frame with the mark.
    [[nodiscard]] Check fromCommand(int times) const {
        prefer("off");
        const auto running = program_.start();
        if (!program_.takesCommands()) {
            throw std::runtime_error("the program takes no commands");
        }
        Samples samples;
        // The first time, the program and the shell find each other.
        for (int time = 0; time <= times; ++time) {
            run("off");
            awaitMark(false);
            const auto begin = Clock::now();
            run("laser");
            samples.push_back(timeToMark(begin));
        }
        samples.erase(samples.begin());
        return withinMilliseconds("GNOME, from the command to the mark", samples, 100);
    }
    // Of a program that starts with a mark.
    [[nodiscard]] Check fromStart(int times) const {
        prefer("highlight");
        Samples samples;
        for (int time = 0; time < times; ++time) {
            awaitMark(false);
            const auto begin = Clock::now();
            const auto running = program_.start();
            samples.push_back(timeToMark(begin));
        }
        awaitMark(false);
        return withinMilliseconds("GNOME, from the start of the program to the mark", samples, 300);
    }

private:
    void prefer(const char* mode) const {
        desktop::writePreferences(shell_.folder() / "config", desktop::preferencesShowing(mode));
    }
    void run(const char* command) const {
        if (!program_.takes(command)) {
            throw std::runtime_error(std::string("the program does not take ") + command);
        }
    }
    // It stays until the shell has forgotten a program that has ended, and serves another.
    void awaitMark(bool isThere) const {
        if (!desktop::waitFor(
                [&] { return shell_.evaluate("global.vantrelMark.has") == isThere; })) {
            throw std::runtime_error("the shell shows no mark, or still does");
        }
    }
    // In milliseconds.
    [[nodiscard]] double timeToMark(Clock::time_point begin) const {
        awaitMark(true);
        const std::chrono::microseconds at(
            shell_.evaluate("global.vantrelMark.at").get<std::int64_t>());
        return Milliseconds(at - begin.time_since_epoch()).count();
    }

    const ShellBench& shell_;
    desktop::ProgramOf<ShellBench> program_;
};

} // namespace

Report measureShell(const Contenders& contenders, const Effort& effort) {
    if (!contenders.reacts) {
        return {};
    }
    const std::filesystem::path program = contenders.program.command.front();
    const ShellBench shell(contenders.dataFolder());
    // Before the shell serves this one.
    std::vector<Check> checks;
    {
        const MarkTimes times(shell, program);
        checks = {times.fromCommand(effort.commands / 8), times.fromStart(effort.commands / 12)};
    }
    AppPreferences preferences;
    preferences.laser.glow = GlowStrength::high;
    const std::array modes{CursorMode::highlight, CursorMode::laser};
    std::array<Comparison, modes.size()> comparisons;
    for (int turn = 0; turn < effort.shellTurns; ++turn) {
        shell.show({});
        const Samples unmarked = shell.motionCost(effort.secondsInTurn);
        for (std::size_t i = 0; i < modes.size(); ++i) {
            shell.show(effectOf(modes[i], preferences));
            comparisons[i].program.push_back(shell.motionCost(effort.secondsInTurn));
            comparisons[i].floor.push_back(unmarked);
        }
    }
    return {.rows = {summarize("GNOME, 1000 motions/s, highlight / no mark", "ms/s", comparisons[0],
                               median, 1.3),
                     summarize("GNOME, 1000 motions/s, laser / no mark", "ms/s", comparisons[1],
                               median, 1.3)},
            .checks = {checks[0], checks[1], shell.misplacedFrames(effort.secondsInTurn),
                       BusTraffic(shell.environment(), shell.folder())
                           .goesForChangesAlone(
                               "GNOME", [&] { shell.show(effectOf(CursorMode::laser, {})); },
                               [&](double seconds) { shell.move(seconds); }, effort.secondsInTurn),
                       shell.growth(effort.shellTurns * 160, effort.shellTurns * 25)}};
}

} // namespace vantrel::bench
