// Compares Vantrel with the floor and with an empty tray application on private desktops, in turns,
// and reports ratios.

#include "measurements.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <nlohmann/json.hpp>
#include <sched.h>
#include <sys/prctl.h>

namespace {

using namespace vantrel::bench;

struct Part {
    const char* name;
    Report (*measure)(const Contenders&, const Effort&);
    bool onlyByName = false; // it takes minutes
};

constexpr std::array parts{Part{"latency", measureLatency},
                           Part{"motion", measureMotion},
                           Part{"rest", measureRest},
                           Part{"clicks", measureClicks},
                           Part{"shortcut", measureShortcut},
                           Part{"switch", measureSwitch},
                           Part{"change", measureChange},
                           Part{"slider", measureSlider},
                           Part{"save", measureSave},
                           Part{"memory", measureMemory},
                           Part{"start", measureStart},
                           Part{"command", measureCommand},
                           Part{"popup", measurePopup},
                           Part{"settings", measureSettings},
                           Part{"drag", measureDrag},
                           Part{"reopening", measureReopening},
                           Part{"shell", measureShell},
                           Part{"kwin", measureKWin},
                           Part{"sway", measureSway},
                           Part{"day", measureDay, true},
                           Part{"gnome-day", measureGnomeDay, true},
                           Part{"kwin-day", measureKWinDay, true},
                           Part{"kwin-memory", measureKWinMemory}};

QString namesOfParts() {
    QStringList names;
    for (const Part& part : parts) {
        names << QLatin1String(part.name);
    }
    return names.join(QStringLiteral(", "));
}

Report measure(const Contenders& contenders, const Effort& effort, const QString& only) {
    Report report;
    for (const Part& part : parts) {
        if (only.isEmpty() ? !part.onlyByName : only == QLatin1String(part.name)) {
            std::fprintf(stderr, "%s ...\n", part.name);
            const auto begin = Clock::now();
            report.append(part.measure(contenders, effort));
            const std::chrono::duration<double> taken = Clock::now() - begin;
            std::fprintf(stderr, "%s took %.0f s\n", part.name, taken.count());
        }
    }
    return report;
}

// Other programs of the machine then take no time away, from here or from what is started here.
bool becomeUndisturbed() {
    const sched_param priority{.sched_priority = 5};
    return sched_setscheduler(0, SCHED_FIFO, &priority) == 0;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Compares Vantrel with the least that a follower of the pointer can do.\n"
                       "Without a program the floor is compared with itself."));
    parser.addPositionalArgument(QStringLiteral("program"), QStringLiteral("path of vantrel"),
                                 QStringLiteral("[program]"));
    const QCommandLineOption json(QStringLiteral("json"), QStringLiteral("write the result there"),
                                  QStringLiteral("file"));
    const QCommandLineOption only(
        QStringLiteral("only"), QStringLiteral("one of ") + namesOfParts(), QStringLiteral("part"));
    const QCommandLineOption smoke(QStringLiteral("smoke"),
                                   QStringLiteral("few samples; missed targets are no failure"));
    parser.addOptions({json, only, smoke});
    parser.addHelpOption();
    parser.process(application);

    const bool undisturbed = becomeUndisturbed();
    if (!undisturbed) {
        std::fprintf(stderr, "not allowed to run at real-time priority: keep the machine idle\n");
    }
    // Pauses of microseconds are meant as such.
    prctl(PR_SET_TIMERSLACK, 1000);
    try {
        const QString program = parser.positionalArguments().value(0);
        const bool quick = parser.isSet(smoke);
        const Report report = measure(contendersFor(program.toStdString()),
                                      quick ? Effort::smoke() : Effort(), parser.value(only));
        report.print();
        if (parser.isSet(json)) {
            nlohmann::json document = report.json();
            document["program"] = program.toStdString();
            document["undisturbed"] = undisturbed;
            std::ofstream(parser.value(json).toStdString()) << document.dump(2) << '\n';
        }
        return quick || report.met() ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vantrel_compare: %s\n", error.what());
        return 2;
    }
}
