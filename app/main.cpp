#include "app/program.h"
#include "platform/freedesktop/termination_signals.h"
#include "ui/components/plain_style.h"

#include <QApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace vantrel {
namespace {

constexpr auto usage =
    "Usage: vantrel [--settings | --help | --version]\n"
    "\n"
    "Makes the mouse pointer easy to follow, on every display.\n"
    "\n"
    "  --settings  open the settings window\n"
    "  --help      show this text and exit\n"
    "  --version   show the version and exit\n"
    "\n"
    "When it runs already on this display, starting it again brings its windows to the\n"
    "front, or opens the settings.\n";

constexpr auto waylandRemark =
    "vantrel: In a Wayland session, Vantrel runs through Xwayland, with the X programs.\n"
    "vantrel: Highlight, laser and click effects appear over the windows of X programs, while one "
    "of these has the keyboard. Elsewhere, and when the pointer rests for 3 seconds, they are "
    "hidden, as Xwayland does not tell where the pointer is.\n"
    "vantrel: The shortcuts work while an X program has the keyboard.\n"
    "vantrel: The panel and the settings work all the time.\n";

constexpr std::chrono::seconds patience(5);

int fail(const std::string& message) {
    std::fprintf(stderr, "vantrel: %s\n", message.c_str());
    return EXIT_FAILURE;
}

void prepareToolkit() {
    // The overlays are on the X server, and so is everything else.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "xcb");
    }
    QApplication::setApplicationName(QStringLiteral("vantrel"));
    QApplication::setApplicationDisplayName(QStringLiteral("Vantrel"));
    QApplication::setApplicationVersion(QStringLiteral(VANTREL_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("vantrel"));
    QApplication::setQuitOnLastWindowClosed(false);
}

// When the X server goes away, the toolkit ends the process at once, as a failure, and with all
// that it has on its stack. The end of a session is none.
class ServerLoss {
public:
    ServerLoss() {
        current_ = this;
        std::atexit([] {
            if (current_ != nullptr) {
                current_->endProgram();
                std::_Exit(EXIT_SUCCESS);
            }
        });
    }
    ~ServerLoss() { current_ = nullptr; }
    ServerLoss(const ServerLoss&) = delete;
    ServerLoss& operator=(const ServerLoss&) = delete;

    void setProgram(Program* program) { program_ = program; }

private:
    void endProgram() {
        if (program_ != nullptr) {
            program_->end();
        }
    }

    static inline ServerLoss* current_ = nullptr;
    Program* program_ = nullptr;
};

int runAsInstance(x11::Connection& connection, x11::Instance& instance, int argc, char** argv,
                  std::span<const std::string> arguments) {
    if (connection.isXwayland()) {
        std::fputs(waylandRemark, stderr);
    }
    TerminationSignals signals;
    ServerLoss serverLoss;
    prepareToolkit();
    // The arguments are the program's; the toolkit would take some of its own out of them.
    int toolkitArgc = std::min(argc, 1);
    const QApplication application(toolkitArgc, argv);
    vantrel::installPlainStyle();
    Program program(connection, instance, arguments);
    serverLoss.setProgram(&program);
    signals.deliverTo([] { QCoreApplication::exit(); });
    const int status = QApplication::exec();
    program.end();
    serverLoss.setProgram(nullptr);
    if (connection.isLost()) {
        // The toolkit has nobody left to take leave of.
        std::_Exit(EXIT_SUCCESS);
    }
    return status;
}

int run(int argc, char** argv, std::span<const std::string> arguments) {
    std::string error;
    const auto connection = x11::Connection::open({}, error);
    if (!connection) {
        return fail(error);
    }
    while (true) {
        if (const auto instance = x11::Instance::claim(*connection)) {
            return runAsInstance(*connection, *instance, argc, argv, arguments);
        }
        const std::vector<std::string> again(arguments.begin(), arguments.end());
        switch (x11::Instance::handOver(*connection, again, patience)) {
        case x11::Instance::HandOver::taken:
            return EXIT_SUCCESS;
        case x11::Instance::HandOver::unanswered:
            return fail("it runs already on this display, and does not answer");
        case x11::Instance::HandOver::gone:
            break;
        }
    }
}

} // namespace
} // namespace vantrel

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    for (const auto& argument : arguments) {
        if (argument == "--help") {
            std::fputs(vantrel::usage, stdout);
            return EXIT_SUCCESS;
        }
        if (argument == "--version") {
            std::puts("vantrel " VANTREL_VERSION " (" VANTREL_BUILD ")");
            return EXIT_SUCCESS;
        }
        if (argument != vantrel::AppDelegate::settingsArgument) {
            std::fprintf(stderr, "vantrel: unknown argument \"%s\", see vantrel --help\n",
                         argument.c_str());
            return 2;
        }
    }
    return vantrel::run(argc, argv, arguments);
}
