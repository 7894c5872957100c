#include "session_windows.h"

#include "look.h"

#include "testdesk/gnome_session.h"
#include "testdesk/kwin_session.h"
#include "testdesk/vantrel_program.h"
#include "testdesk/wait.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <functional>
#include <stdexcept>
#include <utility>

#include <linux/input-event-codes.h>

namespace vantrel::screenshots {
namespace {

using desktop::waitFor;

constexpr std::array scales{1.0, 1.5, 2.0};
constexpr desktop::PixelSize displaySize{1200, 800}; // in points

desktop::PixelSize pixelsAt(double scale) {
    return {static_cast<int>(std::lround(displaySize.width * scale)),
            static_cast<int>(std::lround(displaySize.height * scale))};
}

// What the pictures take of a session.
struct Windows {
    std::filesystem::path folder; // of the session
    desktop::Environment environment;
    std::function<int()> count; // of the program
    std::function<void()> openPanel;
    std::function<QImage()> picture;
};

void expectWindows(const Windows& windows, int count) {
    if (!waitFor([&] { return windows.count() == count; })) {
        throw std::runtime_error("there are " + std::to_string(windows.count()) +
                                 " windows of Vantrel, and not " + std::to_string(count));
    }
}

void save(const Windows& windows, const std::filesystem::path& path) {
    // Two that are alike: nothing fades in any more.
    QImage last = windows.picture();
    const bool isStill = waitFor([&] {
        const auto before = std::exchange(last, windows.picture());
        return last == before;
    });
    if (!isStill || !last.save(QString::fromStdString(path))) {
        throw std::runtime_error("the picture cannot be written: " + path.string());
    }
}

void takeEach(const Windows& windows, const std::filesystem::path& program,
              const std::filesystem::path& start) {
    writeLook(windows.folder / "config");
    for (const std::string language : {"english", "chinese"}) {
        for (const bool dark : {false, true}) {
            auto environment = windows.environment;
            if (dark) {
                environment.merge(darkDesktop());
            }
            const auto name = start.string() + "-" + language + (dark ? "-dark" : "-light");
            std::printf("  %s\n", name.c_str());
            auto preferences = desktop::preferencesShowing("off");
            preferences["language"] = language;
            const auto open = [&](std::vector<std::string> arguments) {
                arguments.insert(arguments.begin(), program);
                return desktop::ChildProcess({.arguments = arguments, .environment = environment});
            };
            desktop::writePreferences(windows.folder / "config", preferences);
            {
                const auto running = open({"--settings"});
                expectWindows(windows, 1);
                windows.openPanel();
                expectWindows(windows, 2);
                save(windows, name + ".png");
            }
            expectWindows(windows, 0);
            std::filesystem::remove(windows.folder / "config/vantrel/welcomeDismissed");
            {
                const auto running = open({});
                expectWindows(windows, 1);
                save(windows, name + "-welcome.png");
            }
            expectWindows(windows, 0);
        }
    }
}

std::string nameAt(const char* session, double scale) {
    return QStringLiteral("%1-%2").arg(QLatin1String(session)).arg(scale).toStdString();
}

} // namespace

void takeGnomeWindows(const std::filesystem::path& program, const std::filesystem::path& folder) {
    for (const double scale : scales) {
        const auto size = pixelsAt(scale);
        const desktop::GnomeSession session(
            {.monitors = {std::to_string(size.width) + "x" + std::to_string(size.height)},
             .scales = {scale},
             .dataFolder = program.parent_path().parent_path() / "share"});
        session.evaluate("new imports.gi.Gio.Settings({schema_id: 'org.gnome.desktop.background'})"
                         "    .set_string('primary-color', '#3b5d78'); 1");
        for (const char* extension : {"marks43@vantrel.org", "marks@vantrel.org"}) {
            session.switchExtension(QString::fromLatin1(extension), true);
        }
        const auto place = [&] {
            return session.evaluate("const item = Main.panel.statusArea.vantrel;"
                                    "item ? item.get_transformed_position() : []");
        };
        takeEach({.folder = session.folder(),
                  .environment = session.environment(),
                  .count =
                      [&] {
                          return session
                              .evaluate("global.get_window_actors()"
                                        "    .filter(({meta_window: window}) =>"
                                        "        window.get_wm_class() === 'vantrel').length")
                              .get<int>();
                      },
                  .openPanel =
                      [&] {
                          // Not a number before the shell has laid it out.
                          waitFor([&] {
                              const auto at = place();
                              return !at.empty() && at.front().is_number();
                          });
                          const auto at = place();
                          session.moveTo(at.at(0).get<double>() + 8, at.at(1).get<double>() + 8);
                          session.click(BTN_LEFT);
                      },
                  .picture = [&] { return session.picture(true); }},
                 program, folder / nameAt("gnome", scale));
    }
}

void takeKdeWindows(const std::filesystem::path& program, const std::filesystem::path& folder) {
    for (const double scale : scales) {
        const desktop::KWinSession session(
            {.scale = scale,
             .size = displaySize,
             .dataFolder = program.parent_path().parent_path() / "share"});
        takeEach({.folder = session.folder(),
                  .environment = session.environment(),
                  .count =
                      [&] {
                          return session
                              .evaluate("(workspace.windowList ? workspace.windowList()"
                                        "                      : workspace.clientList()).length")
                              .get<int>();
                      },
                  .openPanel =
                      [&] {
                          session.client().moveTo(displaySize.width - 60, 10);
                          session.call(QStringLiteral("org.vantrel.Vantrel"),
                                       QStringLiteral("/StatusNotifierItem"),
                                       "org.kde.StatusNotifierItem", "Activate", {0, 0});
                      },
                  .picture = [&] { return session.picture(true); }},
                 program, folder / nameAt("kde", scale));
    }
}

} // namespace vantrel::screenshots
