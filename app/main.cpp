#include "app/app_state.h"
#include "platform/freedesktop/autostart_login_item.h"
#include "platform/freedesktop/desktop_workspace.h"
#include "platform/freedesktop/environment_locale.h"
#include "platform/freedesktop/file_user_defaults.h"
#include "platform/freedesktop/installed_bundle.h"
#include "platform/freedesktop/qt_main_queue.h"
#include "platform/freedesktop/termination_signals.h"
#include "platform/x11/desktop.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>
#include <span>
#include <string_view>

namespace vantrel {
namespace {

constexpr auto usage = "Usage: vantrel [--help | --version]\n"
                       "\n"
                       "Makes the mouse pointer easy to follow, on every display.\n"
                       "\n"
                       "  --help     show this text and exit\n"
                       "  --version  show the version and exit\n";

constexpr auto preferencesKey = "Vantrel.preferences.v1";

// The program on this machine's desktop, from its launch to its end.
class Program {
public:
    // The connection must outlive it.
    explicit Program(x11::Connection& connection) : x11_(connection) {
        lost_ = connection.lost.add([this] { mainQueue_.async([] { QCoreApplication::quit(); }); });
        sleep_ = workspace_.onWillSleep([this] { suspend(); });
        shutDown_ = workspace_.onWillShutDown([this] {
            suspend();
            quit();
        });
        wake_ = workspace_.onDidWake([this] { mainQueue_.async([this] { state_.wake(); }); });
        state_.startUp();
    }

    // What was changed is on disk afterwards.
    void suspend() {
        state_.suspend();
        defaults_.flush();
    }

private:
    // From the event loop, which may not run yet.
    void quit() {
        mainQueue_.async([] { QCoreApplication::quit(); });
    }

    x11::X11Desktop x11_;
    FileUserDefaults defaults_;
    QtMainQueue mainQueue_;
    AutostartLoginItem loginItem_{runningExecutable()};
    DesktopWorkspace workspace_;
    InstalledBundle bundle_;
    EnvironmentLocale locale_;
    SettingsStore store_{defaults_, preferencesKey};
    AppState state_{store_,
                    {.overlay = {x11_.clock, x11_.pointer, x11_.screens, x11_.displayLinks,
                                 x11_.overlayWindows, x11_.transaction, x11_.eventMonitors},
                     .hotKeys = x11_.hotKeys,
                     .mainQueue = mainQueue_,
                     .loginItem = loginItem_,
                     .workspace = workspace_,
                     .bundle = bundle_,
                     .locale = locale_}};
    Subscription lost_;
    Subscription sleep_;
    Subscription shutDown_;
    Subscription wake_;
};

int run(int argc, char** argv) {
    std::string error;
    const auto connection = x11::Connection::open({}, error);
    if (!connection) {
        std::fprintf(stderr, "vantrel: %s\n", error.c_str());
        return EXIT_FAILURE;
    }
    TerminationSignals signals;
    const QCoreApplication application(argc, argv);
    Program program(*connection);
    signals.deliverTo([] { QCoreApplication::quit(); });
    const int status = QCoreApplication::exec();
    program.suspend();
    return status;
}

} // namespace
} // namespace vantrel

int main(int argc, char** argv) {
    for (const std::string_view argument :
         std::span(argv, static_cast<std::size_t>(argc)).subspan(1)) {
        if (argument == "--help") {
            std::fputs(vantrel::usage, stdout);
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
    return vantrel::run(argc, argv);
}
