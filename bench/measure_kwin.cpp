#include "bus_traffic.h"
#include "measurements.h"

#include "overlay/effect.h"
#include "overlay/effect_drawing.h"
#include "platform/kwin/kwin_script.h"
#include "testdesk/kwin_session.h"
#include "testdesk/program_of.h"
#include "testdesk/usage.h"
#include "testdesk/vantrel_program.h"
#include "testdesk/wait.h"

#include <QCoreApplication>

#include <array>
#include <fstream>
#include <iomanip>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

namespace vantrel::bench {
namespace {

using Words = std::vector<std::string>;

void await(const std::function<bool()>& condition, const char* what) {
    const bool holds = desktop::waitFor([&] {
        QCoreApplication::processEvents();
        return condition();
    });
    if (!holds) {
        throw std::runtime_error(std::string("KWin: ") + what);
    }
}

// The places of a circle, 1000 times a second.
void circle(double seconds, const std::function<void(QPoint)>& moveTo) {
    atPace(1000, seconds, [&](int step) {
        const auto [x, y] = onCircle(step, 160);
        moveTo(QPoint(640, 360) + QPointF(x, y).toPoint());
    });
}

class KWinBench : public desktop::KWinSession {
public:
    explicit KWinBench(const Contenders& contenders)
        : KWinSession({.xwayland = true, .dataFolder = contenders.dataFolder()}),
          program_(*this, contenders.program.command.front()) {
        prefer("off");
        client().moveTo(640, 360);
    }

    // What a program shows that starts.
    void prefer(const std::string& mode) const {
        auto preferences = desktop::preferencesShowing(mode);
        preferences["highlight"]["opacity"] = 0.9;
        desktop::writePreferences(folder() / "config", preferences);
    }

    [[nodiscard]] const desktop::ProgramOf<KWinSession>& program() const { return program_; }
    [[nodiscard]] desktop::ChildProcess start(const Words& words,
                                              const std::vector<int>& keepOpen = {}) const {
        return desktop::ChildProcess({.arguments = words,
                                      .environment = environment(),
                                      .errors = folder() / "contender.err",
                                      .keepOpen = keepOpen});
    }
    void command(const std::string& word) const {
        if (!program_.takes(word)) {
            throw std::runtime_error("the program does not take " + word);
        }
    }
    [[nodiscard]] desktop::ChildProcess startProgram() const {
        await([&] { return !hearsPresses(); }, "the script of the last one is there");
        auto process = program_.start();
        await([&] { return hearsPresses(); }, "the script is not there");
        command("off"); // whatever was stored by another one
        return process;
    }
    [[nodiscard]] bool isMarked() const { return qRed(pixel({642, 360})) > 50; }

    // Milliseconds of CPU time for each second of motion, of KWin and of a follower.
    [[nodiscard]] Samples motionCost(double seconds, std::optional<pid_t> follower,
                                     int places = -1) const {
        const auto move = [&](double duration) {
            circle(duration, [&](QPoint place) {
                client().sendTo(place.x(), place.y());
                const std::array<std::int32_t, 2> told{place.x(), place.y()};
                if (places >= 0 && write(places, told.data(), sizeof(told)) < 0) {
                    throw std::runtime_error("the follower is gone");
                }
            });
        };
        const auto spent = [&] {
            return desktop::cpuTime(pid()) +
                   (follower ? desktop::cpuTime(*follower) : std::chrono::nanoseconds(0));
        };
        move(0.3); // warms up
        const auto before = spent();
        move(seconds);
        const auto after = spent();
        client().moveTo(640, 360);
        return {Milliseconds(after - before).count() / seconds};
    }

private:
    desktop::ProgramOf<KWinSession> program_;
};

// A follower that is told where the pointer is.
Samples costWithFollower(const KWinBench& kwin, double seconds) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    const auto path = std::filesystem::canonical("/proc/self/exe").parent_path();
    const auto follower =
        kwin.start({path / "vantrel_layer_follower", std::to_string(ends[0])}, {ends[0]});
    close(ends[0]);
    const std::array<std::int32_t, 2> place{640, 360};
    await([&] { return write(ends[1], place.data(), sizeof(place)) > 0 && kwin.isMarked(); },
          "the follower shows nothing");
    Samples samples = kwin.motionCost(seconds, follower.pid(), ends[1]);
    close(ends[1]);
    return samples;
}

QRect areaOf(const QImage& picture, const std::function<bool(QRgb)>& belongs) {
    QRect area;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (belongs(picture.pixel(x, y))) {
                area |= QRect(x, y, 1, 1);
            }
        }
    }
    return area;
}

// Of pictures of frames of motion, those with the mark elsewhere than around the pointer that they
// show.
Check misplacedFrames(const KWinBench& kwin, double seconds) {
    const auto distance = [&] {
        const auto picture = kwin.picture(true);
        const auto isMark = [](QRgb pixel) { return qRed(pixel) > 150 && qBlue(pixel) < 60; };
        const auto isPointer = [](QRgb pixel) { return qBlue(pixel) > 200; };
        return areaOf(picture, isPointer).topLeft() - areaOf(picture, isMark).topLeft();
    };
    const auto wanted = distance();
    std::jthread motion([&] {
        circle(seconds, [&](QPoint place) { kwin.client().sendTo(place.x(), place.y()); });
    });
    int all = 0;
    int apart = 0;
    for (const auto end = Clock::now() + std::chrono::duration<double>(seconds); Clock::now() < end;
         ++all) {
        apart += distance() != wanted ? 1 : 0;
    }
    std::ostringstream text;
    text << apart << " of " << all;
    return {.name = "frames in KWin with the mark elsewhere",
            .met = all > 0 && apart == 0,
            .found = text.str()};
}

Check timeToMark(const KWinBench& kwin) {
    Samples samples;
    for (int i = 0; i < 20; ++i) {
        await([&] { return !kwin.isMarked(); }, "the mark stays");
        const auto begin = Clock::now();
        const auto command = kwin.program().start({"laser"});
        await([&] { return kwin.isMarked(); }, "no mark");
        samples.push_back(Milliseconds(Clock::now() - begin).count());
        kwin.command("off");
    }
    return withinMilliseconds("KWin, from \"vantrel laser\" to its mark", samples, 100);
}

// Of a program that starts with a mark.
Check timeFromStart(const KWinBench& kwin) {
    Samples samples;
    for (int i = 0; i < 10; ++i) {
        await([&] { return !kwin.isMarked() && !kwin.hearsPresses(); }, "something stays");
        kwin.prefer("highlight");
        const auto begin = Clock::now();
        const auto program = kwin.program().start();
        await([&] { return kwin.isMarked(); }, "no mark");
        samples.push_back(Milliseconds(Clock::now() - begin).count());
    }
    return withinMilliseconds("KWin, from the start of the program to its mark", samples, 300);
}

Check timeToNothing(const KWinBench& kwin) {
    Samples samples;
    for (int i = 0; i < 5; ++i) {
        const auto program = kwin.startProgram();
        kwin.command("highlight");
        await([&] { return kwin.isMarked(); }, "no mark");
        const auto begin = Clock::now();
        program.signal(SIGKILL);
        await([&] { return !kwin.isMarked() && !kwin.hearsPresses(); }, "something stays");
        samples.push_back(Milliseconds(Clock::now() - begin).count());
    }
    return withinMilliseconds("KWin, from the end of a killed program to nothing left", samples,
                              500);
}

Check traffic(const KWinBench& kwin, double seconds) {
    const BusTraffic traffic(kwin.environment(), kwin.folder());
    const auto move = [&](double duration) {
        circle(duration, [&](QPoint place) { kwin.client().sendTo(place.x(), place.y()); });
    };
    auto check = traffic.goesForChangesAlone(
        "KWin", [&] { kwin.command("laser"); }, move, seconds, 1);
    kwin.client().moveTo(640, 360);
    return check;
}

std::string mebibytes(double bytes) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(1) << bytes / (1024 * 1024) << " MiB";
    return text.str();
}

// What KWin has come to hold more, in the second half of the rounds.
Check growth(const desktop::KWinSession& kwin, const std::string& name, int rounds,
             const std::function<void()>& round) {
    const auto held = [&] { return static_cast<double>(desktop::proportionalBytes(kwin.pid())); };
    std::array<double, 3> sizes{held()};
    for (const std::size_t half : {1U, 2U}) {
        for (int i = 0; i < rounds; ++i) {
            round();
        }
        sizes.at(half) = held();
    }
    const double more = sizes[2] - sizes[1];
    return {.name = "KWin's memory, " + name,
            .met = more <= 0.01 * sizes[1],
            .found = mebibytes(more) + " more than " + mebibytes(sizes[1]) + ", at first " +
                     mebibytes(sizes[0])};
}

// Of another script, which stays.
void startWindow(const desktop::KWinSession& kwin) {
    const auto path = kwin.folder() / "window.qml";
    std::ofstream(path) << "import QtQuick.Window 2.15\n"
                           "Window { visible: true; property bool outputOnly: true }\n";
    const auto service = QStringLiteral("org.kde.KWin");
    const auto number =
        kwin.call(service, QStringLiteral("/Scripting"), "org.kde.kwin.Scripting",
                  "loadDeclarativeScript", {QString::fromStdString(path), QStringLiteral("window")})
            .arguments()
            .at(0)
            .toInt();
    kwin.call(service,
              (kwin.version() > 5 ? QStringLiteral("/Scripting/Script%1") : QStringLiteral("/%1"))
                  .arg(number),
              "org.kde.kwin.Script", "run");
}

} // namespace

Report measureKWin(const Contenders& contenders, const Effort& effort) {
    if (!contenders.reacts) {
        return {};
    }
    const KWinBench kwin(contenders);
    const auto cost = [&](std::optional<pid_t> follower = {}) {
        return kwin.motionCost(effort.secondsInTurn, follower);
    };
    Comparison off;
    Comparison highlight;
    Comparison laser;
    Comparison follower;
    const int turns = (effort.turns + 1) / 2;
    for (int turn = 0; turn < turns; ++turn) {
        const Samples nothing = cost();
        const Samples followed = costWithFollower(kwin, effort.secondsInTurn);
        const auto program = kwin.startProgram();
        off.program.push_back(cost(program.pid()));
        for (auto* comparison : {&highlight, &laser}) {
            kwin.command(comparison == &laser ? "laser" : "highlight");
            await([&] { return kwin.isMarked(); }, "no mark");
            comparison->program.push_back(cost(program.pid()));
            comparison->floor.push_back(nothing);
        }
        off.floor.push_back(nothing);
        follower.program.push_back(highlight.program.back());
        follower.floor.push_back(followed);
    }
    const auto killed = timeToNothing(kwin);
    const auto started = timeFromStart(kwin);
    const auto program = kwin.startProgram();
    Report report{
        .rows = {summarize("KWin, off / no program", "ms/s", off, median, 1.1),
                 summarize("KWin, highlight / no program", "ms/s", highlight, median),
                 summarize("KWin, laser / no program", "ms/s", laser, median),
                 summarize("KWin, highlight / layer-shell client", "ms/s", follower, median, 1)},
        .checks = {timeToMark(kwin), started, killed, traffic(kwin, effort.secondsInTurn)}};
    if (kwin.version() <= 5) {
        kwin.command("highlight");
        await([&] { return kwin.isMarked(); }, "no mark");
        report.checks.push_back(misplacedFrames(kwin, effort.turns * effort.secondsInTurn));
    }
    return report;
}

Report measureKWinMemory(const Contenders& contenders, const Effort& effort) {
    if (!contenders.reacts) {
        return {};
    }
    const int rounds = effort.turns > 1 ? 200 : 3;
    const desktop::KWinSession kwin({.outputs = 2, .dataFolder = contenders.dataFolder()});
    // KWin 5 loses a quarter of a mebibyte each time that the last window of scripts goes.
    startWindow(kwin);
    const auto effect = effectOf(CursorMode::highlight, {});
    const auto load = [&] {
        KWinScript script(kwin.bus(), contenders.dataFolder(), EffectDrawing::picture);
        await([&] { return script.state() == MarksState::available; }, "the script is not there");
        script.show(effect);
    };
    const auto loads = growth(kwin, "loads of the script", rounds, load);
    KWinScript script(kwin.bus(), contenders.dataFolder(), EffectDrawing::picture);
    script.show(effect);
    const auto plugs = growth(kwin, "plugs of a display", rounds / 2, [&] {
        kwin.client().enableOutput(1, false);
        kwin.client().enableOutput(1, true);
        QCoreApplication::processEvents();
    });
    return {.rows = {}, .checks = {loads, plugs}};
}

} // namespace vantrel::bench
