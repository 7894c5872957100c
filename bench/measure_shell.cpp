#include "measurements.h"

#include "overlay/effect.h"
#include "platform/gnome/effect_message.h"
#include "platform/gnome/shell_report.h"
#include "testdesk/gnome_session.h"
#include "testdesk/usage.h"

#include <array>
#include <cmath>
#include <numbers>
#include <optional>
#include <sstream>

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
    // On a circle, 1000 times a second.
    void move(double seconds) const {
        atPace(1000, seconds, [&](int step) {
            const double angle = step * 2 * std::numbers::pi / 1000;
            moveBy(std::cos(angle), std::sin(angle));
        });
    }
    // Milliseconds of CPU time of the shell for each second of motion.
    [[nodiscard]] Samples motionCost(double seconds) const {
        move(0.3); // warms up
        const auto before = desktop::cpuTime(pid());
        move(seconds);
        return {Milliseconds(desktop::cpuTime(pid()) - before).count() / seconds};
    }
    // Of frames of motion, those that were painted with the mark more than one motion away from
    // where the pointer was by then.
    [[nodiscard]] Check misplacedFrames(double seconds) const {
        evaluate(R"(
            const mark = Main.layoutManager.uiGroup.get_children()
                .find(({name}) => name === 'vantrel').get_first_child();
            const tracker = global.backend.get_cursor_tracker?.() ??
                imports.gi.Meta.CursorTracker.get_for_display(global.display);
            const found = global.vantrelFrames = {all: 0, apart: 0};
            global.vantrelWatch = global.stage.connect('paint-view', () => {
                const [{x, y}] = tracker.get_pointer();
                found.all++;
                if (Math.hypot(mark.translation_x + mark.width / 2 - x,
                        mark.translation_y + mark.height / 2 - y) >= 2)
                    found.apart++;
            });
            1)");
        move(seconds);
        const auto found =
            evaluate("global.stage.disconnect(global.vantrelWatch); global.vantrelFrames");
        const int all = found.at("all");
        const int apart = found.at("apart");
        std::ostringstream text;
        text << apart << " of " << all;
        return {.name = "frames in GNOME with the mark behind",
                .met = all > 0 && apart == 0,
                .found = text.str()};
    }
};

} // namespace

Report measureShell(const Contenders& contenders, const Effort& effort) {
    if (!contenders.reacts) {
        return {};
    }
    const std::filesystem::path program = contenders.program.command.front();
    const ShellBench shell(program.parent_path().parent_path() / "share");
    AppPreferences preferences;
    preferences.laser.glow = GlowStrength::high;
    const std::array modes{CursorMode::highlight, CursorMode::laser};
    std::array<Comparison, modes.size()> comparisons;
    for (int turn = 0; turn < effort.turns; ++turn) {
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
            .checks = {shell.misplacedFrames(effort.secondsInTurn)}};
}

} // namespace vantrel::bench
