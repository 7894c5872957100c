#include "day.h"
#include "measurements.h"

#include "platform/gnome/shell_report.h"
#include "testdesk/gnome_session.h"
#include "testdesk/kwin_session.h"
#include "testdesk/usage.h"
#include "testdesk/vantrel_program.h"
#include "testdesk/wait.h"

#include <QCoreApplication>

#include <functional>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <linux/input-event-codes.h>

namespace vantrel::bench {
namespace {

using namespace std::chrono_literals;

// What a day needs of a session in which the compositor draws the marks.
struct Place {
    std::string name;
    pid_t compositor = 0;
    std::filesystem::path folder;
    desktop::Environment environment;
    std::function<void(int step)> move; // on a circle, without waiting
    std::function<void()> settle;       // with the pointer away from where pixels are looked at
    std::function<void(int button)> click;
    std::function<int()> closeWindows; // those of programs; how many there were
    std::function<bool()> isBlank;
    std::function<std::string()> complaints; // of the compositor, about scripts
    // Where it has them.
    std::function<void(bool two)> setDisplays;
    std::function<void(bool locked)> lock;
};

// A day, which begins and ends with the program Off.
class SessionDay {
public:
    SessionDay(const Place& place, std::string program)
        : place_(place),
          program_(std::move(program)),
          login_(place.environment.at("DBUS_SYSTEM_BUS_ADDRESS")) {}

    [[nodiscard]] desktop::ChildProcess start(std::vector<std::string> words) const {
        const bool isProgram = words.empty();
        words.insert(words.begin(), program_);
        return desktop::ChildProcess(
            {.arguments = words,
             .environment = place_.environment,
             .errors = isProgram ? place_.folder / "program.err" : std::filesystem::path()});
    }
    void command(const std::string& word) const {
        if (start({word}).wait(10s) != desktop::ExitStatus{.code = 0}) {
            throw std::runtime_error("the program does not take " + word);
        }
    }
    // One of its parts.
    void live() {
        using day::parts;
        command("highlight");
        move(day::motions / parts);
        for (int i = 0; i < day::clicks / parts; ++i) {
            move(1);
            place_.click(i % 2 == 0 ? BTN_LEFT : BTN_RIGHT);
        }
        for (int i = 0; i < day::sleeps / parts; ++i) {
            login_.announceSleep(true);
            move(50);
            login_.announceSleep(false);
            move(50);
        }
        for (int i = 0; place_.lock && i < day::locks / parts; ++i) {
            place_.lock(true);
            move(50);
            place_.lock(false);
            move(50);
        }
        for (int i = 0; place_.setDisplays && i < day::displayChanges / parts; ++i) {
            place_.setDisplays(i % 2 == 0);
            move(100);
        }
        if (place_.setDisplays) {
            place_.setDisplays(false);
        }
        for (int i = 0; i < day::modeChanges / parts; ++i) {
            move(1);
            command(i % 2 == 0 ? "laser" : "highlight");
        }
        for (int i = 0; i < day::openings / parts; ++i) {
            command("settings");
            desktop::waitFor([&] { return place_.closeWindows() > 0; });
            desktop::waitFor([&] { return place_.closeWindows() == 0; });
        }
        command("off");
        place_.settle();
    }

private:
    void move(int count) {
        atPace(day::motionsPerSecond, count / day::motionsPerSecond,
               [&](int) { place_.move(step_++); });
        QCoreApplication::processEvents();
    }

    const Place& place_;
    std::string program_;
    day::LoginManager login_;
    int step_ = 0;
};

Report measureSessionDay(const Place& place, const std::string& program, const Effort& effort) {
    desktop::writePreferences(place.folder / "config", desktop::preferencesShowing("off"));
    SessionDay life(place, program);
    const auto process = life.start({});
    if (!desktop::waitFor(
            [&] { return life.start({"status"}).wait(10s) == desktop::ExitStatus{.code = 0}; })) {
        throw std::runtime_error("the program takes no commands");
    }
    // Compositors that draw by software grow in the first hours with nothing of ours shown.
    const int first = effort.partsOfDay > 2 ? effort.partsOfDay / 2 : 1;
    bool blank = true;
    int part = 0;
    const auto liveTo = [&](int last) {
        for (; part < last; ++part) {
            life.live();
            blank = desktop::waitFor(place.isBlank) && blank;
        }
        const auto held = [](pid_t pid) { return desktop::proportionalBytes(pid) / 1024; };
        return std::pair{held(place.compositor), held(process.pid())};
    };
    const auto before = liveTo(first);
    const auto after = liveTo(effort.partsOfDay);
    std::ostringstream text;
    text << "compositor " << before.first << " to " << after.first << " KiB, program "
         << before.second << " to " << after.second << " KiB";
    const auto errors = desktop::readFile(place.folder / "program.err") + place.complaints();
    const auto name = "a day's use in " + place.name;
    return {.rows = {},
            .checks = {{.name = name + ": held at noon and in the evening",
                        .met = after.first < before.first + before.first / 10 &&
                               after.second < before.second + before.second / 10,
                        .found = text.str()},
                       {.name = name + ": marks left on the screen",
                        .met = blank,
                        .found = blank ? "none" : "some"},
                       {.name = name + ": errors written",
                        .met = errors.empty(),
                        .found = errors.empty() ? "none" : errors}}};
}

bool isBlack(const QImage& picture, QRect area) {
    const auto part = picture.copy(area);
    QImage black(part.size(), part.format());
    black.fill(Qt::black);
    return part == black;
}

} // namespace

Report measureShellDay(const Contenders& contenders, const Effort& effort) {
    if (!contenders.reacts) {
        return {};
    }
    const desktop::GnomeSession session({.dataFolder = contenders.dataFolder()});
    session.switchExtension(extensionFor(QString::number(session.version())), true);
    session.moveTo(640, 500);
    const Place place{
        .name = "GNOME",
        .compositor = session.pid(),
        .folder = session.folder(),
        .environment = session.environment(),
        .move =
            [&](int step) {
                const auto [x, y] = onCircle(step, 1);
                session.moveBy(x, y);
            },
        .settle = [&] { session.moveTo(640, 500); },
        .click = [&](int button) { session.click(button); },
        .closeWindows =
            [&] {
                return session
                    .evaluate("global.get_window_actors().map(actor => actor.meta_window)"
                              "    .filter(each => each.window_type === 0)"
                              "    .map(each => each.delete("
                              "        global.display.get_current_time_roundtrip())).length")
                    .get<int>();
            },
        .isBlank =
            [&] {
                return isBlack(session.picture(), {300, 200, 680, 500});
            },
        .complaints = [&] { return session.complaints(); },
        .setDisplays = {},
        .lock =
            [&](bool locked) {
                session.evaluate(std::string("Main.sessionMode.") + (locked ? "push" : "pop") +
                                 "Mode('unlock-dialog'); 1");
            },
    };
    return measureSessionDay(place, contenders.program.command.front(), effort);
}

Report measureKWinDay(const Contenders& contenders, const Effort& effort) {
    if (!contenders.reacts) {
        return {};
    }
    desktop::KWinSession session(
        {.outputs = 2, .xwayland = true, .dataFolder = contenders.dataFolder()});
    const auto& client = session.client();
    const auto environment = [&] {
        auto all = session.environment();
        all.try_emplace("DBUS_SYSTEM_BUS_ADDRESS", all.at("DBUS_SESSION_BUS_ADDRESS"));
        return all;
    }();
    const std::string windows = session.version() > 5 ? "windowList" : "clientList";
    const Place place{
        .name = "KWin",
        .compositor = session.pid(),
        .folder = session.folder(),
        .environment = environment,
        .move =
            [&](int step) {
                const auto [x, y] = onCircle(step, 160);
                client.sendTo(640 + x, 360 + y);
            },
        .settle = [&] { client.moveTo(640, 360); },
        .click = [&](int button) { session.click(button); },
        .closeWindows =
            [&] {
                return session
                    .evaluate("workspace." + windows +
                              "().filter(function (each) { return each.normalWindow; })"
                              ".map(function (each) { each.closeWindow(); }).length")
                    .get<int>();
            },
        .isBlank =
            [&] {
                return isBlack(session.picture(), {0, 0, 1280, 720});
            },
        .complaints = [&] { return session.complaints(); },
        .setDisplays = [&](bool two) { client.enableOutput(1, two); },
        .lock = {},
    };
    return measureSessionDay(place, contenders.program.command.front(), effort);
}

} // namespace vantrel::bench
