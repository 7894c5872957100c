#include "testdesk/gnome_session.h"

#include "testdesk/wait.h"

#include <QDBusObjectPath>
#include <QDBusVariant>

#include <cmath>
#include <fstream>
#include <stdexcept>

#include <linux/input-event-codes.h>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

constexpr auto inputService = "org.gnome.Mutter.RemoteDesktop";
constexpr auto inputInterface = "org.gnome.Mutter.RemoteDesktop.Session";

Environment environmentFor(const std::filesystem::path& folder, const PrivateBus& systemBus,
                           const PrivateBus& sessionBus, const std::filesystem::path& dataFolder) {
    auto environment = environmentIn(folder);
    environment["XDG_DATA_DIRS"] = dataFolder.string() + ":/usr/local/share:/usr/share";
    environment["XDG_SESSION_TYPE"] = "wayland";
    environment["XDG_CURRENT_DESKTOP"] = "GNOME";
    environment["DBUS_SYSTEM_BUS_ADDRESS"] = systemBus.address();
    environment["DBUS_SESSION_BUS_ADDRESS"] = sessionBus.address();
    environment["GSETTINGS_BACKEND"] = "keyfile";
    environment["LIBGL_ALWAYS_SOFTWARE"] = "1";
    return environment;
}

void writeSettings(const std::filesystem::path& folder, int scale, bool inPoints) {
    const auto settings = folder / "config" / "glib-2.0" / "settings";
    std::filesystem::create_directories(settings);
    std::ofstream(settings / "keyfile") << "[org/gnome/desktop/background]\n"
                                           "picture-options='none'\n"
                                           "primary-color='#000000'\n"
                                           "color-shading-type='solid'\n"
                                           "[org/gnome/desktop/interface]\n"
                                           "enable-animations=false\n"
                                           "enable-hot-corners=false\n"
                                           "scaling-factor=uint32 "
                                        << scale
                                        << "\n"
                                           "[org/gnome/desktop/notifications]\n"
                                           "show-banners=false\n"
                                           "[org/gnome/desktop/session]\n"
                                           "idle-delay=uint32 0\n"
                                           "[org/gnome/mutter]\n"
                                        << (inPoints ? "experimental-features="
                                                       "['scale-monitor-framebuffer']\n"
                                                     : "");
    makeRuntimeFolder(folder);
    // Without it the shell ends, as it could not start an Xwayland.
    std::filesystem::create_directory("/tmp/.X11-unix");
    if (std::error_code error; std::filesystem::is_directory("/tmp/.X11-unix", error)) {
        std::filesystem::permissions(
            "/tmp/.X11-unix", std::filesystem::perms::all | std::filesystem::perms::sticky_bit,
            error);
    }
}

Command shellCommand(const GnomeSession::Options& options, const Environment& environment,
                     const std::filesystem::path& folder) {
    writeSettings(folder, options.scale, !options.scales.empty());
    std::vector<std::string> arguments{"gnome-shell", "--unsafe-mode"};
    Environment ofShell = environment;
    if (options.screen.empty()) {
        arguments.emplace_back("--headless");
        for (const auto& monitor : options.monitors) {
            arguments.insert(arguments.end(), {"--virtual-monitor", monitor});
        }
    } else {
        arguments.insert(arguments.end(), {"--nested", "--wayland"});
        ofShell["DISPLAY"] = options.screen;
        ofShell["MUTTER_DEBUG_DUMMY_MODE_SPECS"] = options.monitors.front();
    }
    return {.arguments = arguments,
            .environment = ofShell,
            .output = folder / "shell.out",
            .errors = folder / "shell.err",
            .signalOnParentDeath = SIGTERM};
}

} // namespace

GnomeSession::GnomeSession(const Options& options)
    : systemBus_(folder_.path() / "system_bus"),
      sessionBus_(folder_.path() / "session_bus"),
      environment_(environmentFor(folder_.path(), systemBus_, sessionBus_, options.dataFolder)),
      shell_(shellCommand(options, environment_, folder_.path())),
      bus_(QDBusConnection::connectToBus(QString::fromStdString(sessionBus_.address()),
                                         QString::fromStdString(sessionBus_.address()))) {
    // At the start a pane over everything takes all presses, and then the overview opens.
    const auto isReady = [this] {
        try {
            return evaluate("const isUp = !Main.layoutManager._startingUp;"
                            "if (isUp && Main.overview.visible &&"
                            "    !Main.overview.animationInProgress)"
                            "    Main.overview.hide();"
                            "isUp && !Main.overview.visible && !Main.overview._shown") == true;
        } catch (const std::exception&) {
            return false;
        }
    };
    if (!waitFor([&] { return !shell_.running() || isReady(); }, 60s) || !shell_.running()) {
        throw std::runtime_error("gnome-shell did not start: " +
                                 readFile(folder_.path() / "shell.err"));
    }
    if (!options.scales.empty()) {
        showOn(options.scales);
    }
    if (options.screen.empty()) {
        startInput();
    }
}

GnomeSession::~GnomeSession() {
    QDBusConnection::disconnectFromBus(bus_.name());
}

Environment GnomeSession::environment() const {
    auto environment = environment_;
    environment["WAYLAND_DISPLAY"] = "wayland-0";
    environment["DISPLAY"] = evaluate("imports.gi.GLib.getenv('DISPLAY')");
    const auto authority = evaluate("imports.gi.GLib.getenv('XAUTHORITY')");
    if (authority.is_string()) {
        environment["XAUTHORITY"] = authority;
    }
    return environment;
}

NativeWindow GnomeSession::startFullScreenWindow() const {
    auto environment = environment_;
    environment["WAYLAND_DISPLAY"] = "wayland-0";
    return {environment, folder_.path(), [this] {
                return evaluate("global.display.focus_window?.is_fullscreen() ?? false") == true;
            }};
}

std::string GnomeSession::complaints() const {
    std::string complaints;
    std::ifstream log(folder_.path() / "shell.err");
    for (std::string line; std::getline(log, line);) {
        const auto has = [&](const char* word) { return line.find(word) != std::string::npos; };
        // Of a session without the services of one.
        if ((has("JS ERROR") && !has("ServiceUnknown")) || has("vantrel") || has("accelerator")) {
            complaints += line + "\n";
        }
    }
    return complaints;
}

int GnomeSession::version() const {
    const auto answer = call(
        "org.gnome.Shell", QStringLiteral("/org/gnome/Shell"), "org.freedesktop.DBus.Properties",
        "Get", {QStringLiteral("org.gnome.Shell.Extensions"), QStringLiteral("ShellVersion")});
    return std::stoi(
        answer.arguments().at(0).value<QDBusVariant>().variant().toString().toStdString());
}

nlohmann::json GnomeSession::evaluate(const std::string& script) const {
    const auto answer = call("org.gnome.Shell", QStringLiteral("/org/gnome/Shell"),
                             "org.gnome.Shell", "Eval", {QString::fromStdString(script)})
                            .arguments();
    const auto result = answer.at(1).toString().toStdString();
    if (!answer.at(0).toBool()) {
        throw std::runtime_error(script + ": " + result);
    }
    return result.empty() ? nlohmann::json() : nlohmann::json::parse(result);
}

QImage GnomeSession::picture(bool withPointer) const {
    const auto file = QString::fromStdString(folder_.path() / "picture.png");
    call("org.gnome.Shell", QStringLiteral("/org/gnome/Shell/Screenshot"),
         "org.gnome.Shell.Screenshot", "Screenshot", {withPointer, false, file});
    return QImage(file).convertToFormat(QImage::Format_RGB32);
}

bool GnomeSession::switchExtension(const QString& extension, bool on) const {
    return call("org.gnome.Shell", QStringLiteral("/org/gnome/Shell"), "org.gnome.Shell.Extensions",
                on ? "EnableExtension" : "DisableExtension", {extension})
        .arguments()
        .at(0)
        .toBool();
}

std::uint32_t GnomeSession::castScreen() const {
    // In the shell, whose own call of itself must not be waited for.
    evaluate(R"(
        const {Gio, GLib} = imports.gi;
        const name = 'org.gnome.Mutter.ScreenCast';
        const bus = Gio.DBus.session;
        const call = (path, part, method, values, then) => bus.call(name, path, name + part, method,
            values, null, 0, -1, null, (_, answer) => then(...bus.call_finish(answer).recursiveUnpack()));
        call('/org/gnome/Mutter/ScreenCast', '', 'CreateSession', new GLib.Variant('(a{sv})', [{}]),
            session => {
                const withoutPointer = {'cursor-mode': new GLib.Variant('u', 0)};
                call(session, '.Session', 'RecordMonitor',
                    new GLib.Variant('(sa{sv})', ['Meta-0', withoutPointer]), stream => {
                        bus.signal_subscribe(name, `${name}.Stream`, 'PipeWireStreamAdded', stream, null, 0,
                            (...signal) => [global.vantrelStream] = signal[5].recursiveUnpack());
                        call(session, '.Session', 'Start', null, () => {});
                    });
            });
        1)");
    nlohmann::json stream;
    if (!waitFor([&] { return !(stream = evaluate("global.vantrelStream ?? null")).is_null(); })) {
        throw std::runtime_error("no screen cast");
    }
    return stream;
}

void GnomeSession::showOn(const std::vector<double>& scales) const {
    const auto wanted = nlohmann::json(scales).dump();
    // In the shell, whose own call of itself must not be waited for.
    evaluate("const wanted = " + wanted + R"(;
        const {Gio, GLib} = imports.gi;
        const name = 'org.gnome.Mutter.DisplayConfig';
        const call = (method, values, then) => Gio.DBus.session.call(name,
            '/org/gnome/Mutter/DisplayConfig', name, method, values, null, 0, -1, null,
            (bus, answer) => then(bus.call_finish(answer).recursiveUnpack()));
        call('GetCurrentState', null, ([serial, displays, , {'layout-mode': layout}]) => {
            let left = 0;
            const places = wanted.map((scale, number) => {
                const [[connector], [[mode, width]]] = displays[number];
                const place = [left, 0, scale, 0, number === 0, [[connector, mode, {}]]];
                left += layout === 1 ? width / scale : width;
                return place;
            });
            call('ApplyMonitorsConfig', new GLib.Variant('(uua(iiduba(ssa{sv}))a{sv})',
                [serial, 1, places, {}]), () => {});
        });
        1)");
    const bool isSet = waitFor([&] {
        return evaluate("Main.layoutManager.monitors.map((_, number) =>"
                        "    global.display.get_monitor_scale(number))") == nlohmann::json(scales);
    });
    if (!isSet) {
        throw std::runtime_error("displays do not take " + wanted);
    }
}

void GnomeSession::startInput() {
    inputSession_ = call(inputService, QStringLiteral("/org/gnome/Mutter/RemoteDesktop"),
                         inputService, "CreateSession")
                        .arguments()
                        .at(0)
                        .value<QDBusObjectPath>()
                        .path();
    inputCall("Start");
    // The keyboard comes with its first key, of which programs that are there by then get nothing.
    type(KEY_LEFTSHIFT, true);
    type(KEY_LEFTSHIFT, false);
}

QPointF GnomeSession::pointer() const {
    const auto place = evaluate("const tracker = global.backend.get_cursor_tracker?.() ??"
                                "    imports.gi.Meta.CursorTracker.get_for_display(global.display);"
                                "const [point] = tracker.get_pointer();"
                                "[point.x, point.y]");
    return {place.at(0).get<double>(), place.at(1).get<double>()};
}

void GnomeSession::moveTo(double x, double y) const {
    // The first motion only makes the pointer, and at some scales all go further than they should.
    double pace = 1;
    QPointF place = pointer();
    const bool arrived = waitFor([&] {
        const QPointF before = place;
        const QPointF way = QPointF(x, y) - before;
        inputCall("NotifyPointerMotionRelative", {way.x() / pace, way.y() / pace});
        waitFor([&] { return (place = pointer()) != before; }, 200ms);
        const QPointF moved = place - before;
        if (!moved.isNull()) {
            pace *= std::hypot(moved.x(), moved.y()) / std::hypot(way.x(), way.y());
        }
        return (place - QPointF(x, y)).manhattanLength() < 0.1;
    });
    if (!arrived) {
        throw std::runtime_error("the pointer does not move");
    }
}

void GnomeSession::moveBy(double x, double y) const {
    auto message = QDBusMessage::createMethodCall(QString::fromLatin1(inputService), inputSession_,
                                                  QString::fromLatin1(inputInterface),
                                                  QStringLiteral("NotifyPointerMotionRelative"));
    message.setArguments({x, y});
    bus_.send(message);
}

void GnomeSession::press(int button, bool down) const {
    inputCall("NotifyPointerButton", {button, down});
}

void GnomeSession::click(int button) const {
    press(button, true);
    press(button, false);
}

void GnomeSession::type(int key, bool down) const {
    inputCall("NotifyKeyboardKeycode", {static_cast<uint>(key), down});
}

void GnomeSession::inputCall(const char* method, const QVariantList& arguments) const {
    call(inputService, inputSession_, inputInterface, method, arguments);
}

QDBusMessage GnomeSession::call(const char* service, const QString& path, const char* interface,
                                const char* method, const QVariantList& arguments) const {
    return callOn(bus_, QString::fromLatin1(service), path, interface, method, arguments);
}

} // namespace vantrel::desktop
