#include "overlay/overlay_window_manager.h"
#include "platform/freedesktop/file_user_defaults.h"
#include "platform/freedesktop/termination_signals.h"
#include "platform/x11/desktop.h"
#include "preferences/settings_store.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>
#include <span>
#include <string_view>

namespace {

constexpr auto usage = "Usage: vantrel [--help | --version]\n"
                       "\n"
                       "Makes the mouse pointer easy to follow, on every display.\n"
                       "\n"
                       "  --help     show this text and exit\n"
                       "  --version  show the version and exit\n";

int run(int argc, char** argv) {
    using namespace vantrel;
    std::string error;
    const auto connection = x11::Connection::open({}, error);
    if (!connection) {
        std::fprintf(stderr, "vantrel: %s\n", error.c_str());
        return EXIT_FAILURE;
    }
    const QCoreApplication application(argc, argv);
    const TerminationSignals signals([] { QCoreApplication::quit(); });
    x11::X11Desktop desktop(*connection);
    const auto lost = connection->lost.add([] { QCoreApplication::quit(); });

    FileUserDefaults defaults;
    const SettingsStore store(defaults, "Vantrel.preferences.v1");
    const auto preferences = store.load();
    OverlayWindowManager overlays({desktop.clock, desktop.pointer, desktop.screens,
                                   desktop.displayLinks, desktop.overlayWindows,
                                   desktop.transaction, desktop.eventMonitors});
    overlays.apply(preferences.lastMode == CursorMode::off ? CursorMode::highlight
                                                           : preferences.lastMode,
                   preferences);
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    for (const std::string_view argument :
         std::span(argv, static_cast<std::size_t>(argc)).subspan(1)) {
        if (argument == "--help") {
            std::fputs(usage, stdout);
            return EXIT_SUCCESS;
        }
        if (argument == "--version") {
            std::puts("vantrel " VANTREL_VERSION " (" VANTREL_BUILD ")");
            return EXIT_SUCCESS;
        }
        std::fprintf(stderr, "vantrel: unknown argument \"%.*s\", see vantrel --help\n",
                     static_cast<int>(argument.size()), argument.data());
        return 2;
    }
    return run(argc, argv);
}
