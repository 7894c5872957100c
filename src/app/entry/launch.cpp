#include "app/entry/command_language.h"
#include "app/entry/running_instance.h"
#include "app/entry/start.h"
#include "app/entry/vantrel_app.h"
#include "platform/freedesktop/bus_probe.h"
#include "platform/freedesktop/command_socket.h"
#include "platform/freedesktop/installed_bundle.h"
#include "platform/freedesktop/session_address.h"
#include "platform/freedesktop/termination_signals.h"
#include "platform/x11/instance.h"
#include "ui/components/plain_style.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLoggingCategory>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <optional>
#include <string_view>
#include <thread>
#include <utility>

#include <dlfcn.h>
#include <unistd.h>

namespace vantrel {
namespace {

constexpr std::string_view englishWaylandRemark =
    "vantrel: In this Wayland session, Vantrel draws through Xwayland, with the X programs.\n"
    "vantrel: Highlight, laser and click effects appear over the windows of X programs, while one "
    "of these has the keyboard. Elsewhere, and when the pointer rests for 3 seconds, they are "
    "hidden, as Xwayland does not tell where the pointer is.\n"
    "vantrel: The shortcuts work while an X program has the keyboard.\n"
    "vantrel: KDE Plasma shows all of it everywhere, and GNOME does once Vantrel's extension is "
    "switched on; the settings have a button for that.\n"
    "vantrel: sway from 1.11 on and labwc from 0.9 on show highlight and laser everywhere.\n"
    "vantrel: Commands such as vantrel toggle highlight, the panel and the settings work all the "
    "time.\n";
constexpr std::string_view chineseWaylandRemark =
    "vantrel: 在此 Wayland 会话中，Vantrel 与 X 程序一样通过 Xwayland 绘制。\n"
    "vantrel: 高亮、激光和点击效果只在某个 X 程序拥有键盘焦点时显示在 X 程序的窗口上。"
    "在其他位置，或指针静止 3 秒后，效果会隐藏，因为 Xwayland 不会告知指针的位置。\n"
    "vantrel: 快捷键只在 X 程序拥有键盘焦点时有效。\n"
    "vantrel: 在 KDE Plasma 中一切在任何地方都有效；在 GNOME 中开启 Vantrel 的扩展后也是如此，"
    "设置中有开启按钮。\n"
    "vantrel: sway 1.11 及 labwc 0.9 起，高亮和激光在任何地方都可显示。\n"
    "vantrel: vantrel toggle highlight 等命令、面板和设置始终可用。\n";

constexpr std::string_view englishLayerShellRemark =
    "vantrel: This compositor tells no program of clicks, so these have no effect.\n"
    "vantrel: Where it has no shortcuts for programs either, bind keys in its configuration to "
    "vantrel toggle highlight and vantrel toggle laser.\n";
constexpr std::string_view chineseLayerShellRemark =
    "vantrel: 此合成器不会告知程序鼠标点击，因此没有点击效果。\n"
    "vantrel: 如果合成器也不提供程序快捷键，请在其配置中为 vantrel toggle highlight "
    "和 vantrel toggle laser 绑定按键。\n";

constexpr std::string_view englishNothingRemark =
    "vantrel: Nothing in this session can draw the marks now; vantrel status --json tells what is "
    "missing.\n"
    "vantrel: Commands, the panel and the settings work all the time.\n";
constexpr std::string_view chineseNothingRemark =
    "vantrel: 此会话目前无法绘制标记；vantrel status --json 会说明缺少什么。\n"
    "vantrel: 命令、面板和设置始终可用。\n";

constexpr std::chrono::seconds busTimeout(1);

// For whoever starts the compositor or Xwayland to take connections again; where the session goes
// on, they wait there already.
constexpr std::chrono::seconds returnTimeout(2);
// For a compositor to answer at its start, and at any other time; it may be loading the desktop.
constexpr std::chrono::seconds compositorReturn(10);
constexpr std::chrono::seconds compositorTimeout(4);
// One that was started anew and loses its session sooner would lose it again, and so for ever.
constexpr std::chrono::seconds shortestLife(1);
constexpr auto startedAnew = "VANTREL_STARTED_ANEW";
// In which all connections of a compositor that ends are closed.
constexpr std::chrono::seconds closingTime(1);

// The toolkit's platforms, by which its windows come to the screen. Each one needs a plugin.
const char* platformIn(bool isWaylandSession) {
    return isWaylandSession ? qEnvironmentVariableIsEmpty("DISPLAY") ? "wayland" : "wayland;xcb"
                            : "xcb";
}

// To connect is mostly to wait, so the toolkit's plugin is loaded meanwhile. Only that: the toolkit
// takes the thread in which its first object is made for the main one.
std::future<void> loadPluginForX() {
    const auto file =
        QLibraryInfo::path(QLibraryInfo::PluginsPath) + QStringLiteral("/platforms/libqxcb.so");
    return std::async([path = file.toStdString()] { dlopen(path.c_str(), RTLD_LAZY); });
}

void prepareToolkit(const char* platform) {
    // The toolkit would wait for a bus that says nothing, each time that it wants something of it.
    if (sessionBusIsSilent(busTimeout)) {
        const auto remark = said("vantrel: the session bus does not answer; going on without it\n",
                                 "vantrel: 会话总线没有响应；将不使用会话总线\n");
        std::fputs(remark.c_str(), stderr);
        qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    }
    // Whatever the session prefers.
    qputenv("QT_QPA_PLATFORM", platform);
    // It complains whenever a window with the keyboard goes, as a compositor cannot name that then.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.qpa.wayland.textinput.warning=false"));
    QApplication::setApplicationName(QStringLiteral("vantrel"));
    QApplication::setApplicationDisplayName(QStringLiteral("Vantrel"));
    QApplication::setApplicationVersion(QStringLiteral(VANTREL_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("vantrel"));
    QApplication::setQuitOnLastWindowClosed(false);
}

// A compositor that starts anew has its socket before it answers.
bool isSessionThere(bool isNative) {
    x11::ConnectionError error;
    return isNative ? wayland::Connection::open({}, compositorReturn) != nullptr
                    : x11::Connection::open({}, error) != nullptr;
}

// When the X server or the compositor goes away, the toolkit ends the process at once, as a
// failure, and with all that it has on its stack. The end of a session is none. But a compositor
// that starts anew takes its programs with it and leaves the session: then the program starts anew
// as well.
class SessionLoss {
public:
    // Whether it is the session of a compositor, and whether that is the one to be seen again.
    SessionLoss(bool mayReturn, bool isNative) : mayReturn_(mayReturn), isNative_(isNative) {
        current_ = this;
        qunsetenv(startedAnew);
        std::atexit([] {
            if (current_ != nullptr) {
                current_->endAndLeave();
            }
        });
        // Nothing is called when the toolkit ends the process for want of a compositor, but it
        // complains first, in whatever thread it is that finds out.
        static QtMessageHandler usual = nullptr;
        usual = qInstallMessageHandler(
            [](QtMsgType type, const QMessageLogContext& context, const QString& message) {
                if (message.startsWith(QLatin1String("The Wayland connection")) &&
                    current_ != nullptr && current_->isCompositorGone()) {
                    current_->awaitEnd();
                }
                usual(type, context, message);
            });
    }
    ~SessionLoss() {
        qInstallMessageHandler(nullptr);
        current_ = nullptr;
    }
    SessionLoss(const SessionLoss&) = delete;
    SessionLoss& operator=(const SessionLoss&) = delete;

    void setProgram(VantrelApp* program) { program_ = program; }
    // With nothing left to save.
    [[noreturn]] void leave() const {
        if (mayReturn_ && (!isAnew_ || Clock::now() - begun_ > shortestLife)) {
            qputenv(startedAnew, "1");
            sigset_t none;
            sigemptyset(&none);
            pthread_sigmask(SIG_SETMASK, &none, nullptr);
            const auto end = Clock::now() + returnTimeout;
            while (Clock::now() < end) {
                if (isSessionThere(isNative_)) {
                    execl(runningExecutable().c_str(), "vantrel", nullptr);
                }
                std::this_thread::sleep_for(std::chrono::milliseconds(100));
            }
        }
        std::_Exit(EXIT_SUCCESS);
    }

private:
    using Clock = std::chrono::steady_clock;

    [[noreturn]] void endAndLeave() {
        if (VantrelApp* program = program_) {
            program->end();
        }
        leave();
    }
    [[nodiscard]] bool isCompositorGone() const {
        const VantrelApp* program = program_;
        return program != nullptr && program->seesCompositorGo(closingTime);
    }
    // The main thread finds out too, by the program's own connection.
    void awaitEnd() {
        if (std::this_thread::get_id() == thread_) {
            endAndLeave();
        }
        std::this_thread::sleep_for(compositorReturn);
    }

    static inline SessionLoss* current_ = nullptr;
    const std::thread::id thread_ = std::this_thread::get_id();
    const Clock::time_point begun_ = Clock::now();
    const bool isAnew_ = qEnvironmentVariableIsSet(startedAnew);
    const bool mayReturn_;
    const bool isNative_;
    std::atomic<VantrelApp*> program_ = nullptr;
};

void remarkOn(const SessionMeans& means) {
    if (means.drawing == Means::xwayland) {
        std::fputs(said(englishWaylandRemark, chineseWaylandRemark).c_str(), stderr);
    } else if (means.drawing == Means::layerShell) {
        std::fputs(said(englishLayerShellRemark, chineseLayerShellRemark).c_str(), stderr);
    } else if (means.drawing == Means::none) {
        std::fputs(said(englishNothingRemark, chineseNothingRemark).c_str(), stderr);
    }
}

int runAsInstance(VantrelApp::Connections connections, CommandSocket& commands,
                  const Start& start) {
    // A word to a terminal that has gone must not end the program.
    std::signal(SIGPIPE, SIG_IGN);
    TerminationSignals signals;
    const bool isNative = connections.compositor != nullptr;
    SessionLoss sessionLoss(isNative || connections.server->isXwayland(), isNative);
    prepareToolkit(platformIn(isNative));
    // The arguments are the program's; the toolkit would take some of its own out of them.
    int toolkitArgc = std::min(start.argc, 1);
    const QApplication application(toolkitArgc, start.argv);
    vantrel::installPlainStyle();
    VantrelApp program(std::move(connections), commands, start.command, start.launched);
    sessionLoss.setProgram(&program);
    remarkOn(program.means());
    signals.deliverTo([] { QCoreApplication::exit(); });
    const int status = QApplication::exec();
    program.end();
    if (program.hasLostSession()) {
        sessionLoss.leave();
    }
    sessionLoss.setProgram(nullptr);
    if (!program.isSaved()) {
        // The disk does not answer.
        std::_Exit(EXIT_SUCCESS);
    }
    return status;
}

// The exit status, when there is an instance that took the command.
std::optional<int> passOn(const Start& start, const FindInstance& instance) {
    const auto answer = askRunningInstance(instance, start.words, start.command);
    if (answer && answer->status == CommandAnswer::Status::done) {
        start.launched();
    }
    return answer ? std::optional(report(*answer)) : std::nullopt;
}

// The instance of a Wayland session takes commands at an address that no other program can have,
// that of an X server owns a selection there.
std::optional<int> runAt(const std::optional<std::string>& session, const Start& start) {
    CommandSocket commands(session.value_or(std::string()));
    if (session && commands.address().empty()) {
        return passOn(start, instanceAt(*session));
    }
    // One that takes connections may say nothing.
    if (auto compositor = session ? wayland::Connection::open({}, compositorTimeout) : nullptr) {
        return runAsInstance({.compositor = std::move(compositor)}, commands, start);
    }
    const auto plugin = loadPluginForX();
    std::optional<ServerTimeout> serverTimeout(std::in_place);
    x11::ConnectionError error;
    auto connection = x11::Connection::open({}, error);
    if (!connection) {
        return report(unreachable(error));
    }
    if (auto instance = x11::Instance::claim(*connection, commands.address())) {
        serverTimeout.reset();
        // A thread that began before signals are blocked would still take them.
        plugin.wait();
        return runAsInstance({.server = std::move(connection), .instance = std::move(instance)},
                             commands, start);
    }
    return passOn(start, instanceOn(*connection));
}

int runProgram(const Start& start) {
    const auto session = sessionAddress();
    while (true) {
        if (const auto status = runAt(session, start)) {
            return *status;
        }
    }
}

} // namespace
} // namespace vantrel

extern "C" __attribute__((visibility("default"))) int
vantrelRunProgram(const vantrel::Start& start) {
    return vantrel::runProgram(start);
}
