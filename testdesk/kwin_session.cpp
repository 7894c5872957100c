#include "testdesk/kwin_session.h"

#include "testdesk/kwin_command.h"
#include "testdesk/screen_capture.h"
#include "testdesk/wait.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QThread>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <stdexcept>
#include <thread>

#include <unistd.h>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

const auto kwinService = QStringLiteral("org.kde.KWin");
const auto loginPath = QStringLiteral("/org/freedesktop/login1");

// By which KWin knows its session, and no more of it than that has to be. KWin waits for its
// answers, so they come also while somebody waits for KWin.
class LoginManager final : public QDBusVirtualObject {
public:
    LoginManager() {
        moveToThread(&thread_);
        thread_.start();
    }
    ~LoginManager() override {
        thread_.quit();
        thread_.wait();
    }
    LoginManager(const LoginManager&) = delete;
    LoginManager& operator=(const LoginManager&) = delete;

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        const QDBusObjectPath session(message.path());
        return connection.send(message.createReply(QVariant::fromValue(session)));
    }

private:
    QThread thread_;
};

// What KWin writes on a pipe, meanwhile.
class PipeReader {
public:
    PipeReader() {
        if (pipe(ends_.data()) != 0) {
            throw std::runtime_error("no pipe");
        }
        thread_ = std::thread([this] {
            std::array<char, 65536> part{};
            for (ssize_t size = 0; (size = read(ends_[0], part.data(), part.size())) > 0;) {
                bytes_.append(part.data(), static_cast<std::size_t>(size));
            }
        });
    }
    ~PipeReader() { finish(); }
    PipeReader(const PipeReader&) = delete;
    PipeReader& operator=(const PipeReader&) = delete;

    [[nodiscard]] int descriptor() const { return ends_[1]; }
    const std::string& finish() {
        if (thread_.joinable()) {
            close(ends_[1]);
            thread_.join();
            close(ends_[0]);
        }
        return bytes_;
    }

private:
    std::array<int, 2> ends_{};
    std::string bytes_;
    std::thread thread_;
};

// They lie one over the other at first, in the order in which they were made.
void placeOutputs(const std::string& display, int width) {
    const XConnection connection(display);
    const auto tree = ownReply(xcb_query_tree_reply(
        connection.get(), xcb_query_tree(connection.get(), connection.root()), nullptr));
    const auto* windows = xcb_query_tree_children(tree.get());
    std::vector<xcb_window_t> outputs(windows,
                                      windows + xcb_query_tree_children_length(tree.get()));
    std::ranges::sort(outputs);
    std::uint32_t x = 0;
    for (const auto output : outputs) {
        const auto geometry = ownReply(xcb_get_geometry_reply(
            connection.get(), xcb_get_geometry(connection.get(), output), nullptr));
        if (geometry && geometry->width >= width) {
            xcb_configure_window(connection.get(), output, XCB_CONFIG_WINDOW_X, &x);
            x += geometry->width;
        }
    }
    connection.sync();
}

} // namespace

KWinSession::KWinSession(const Options& options)
    : options_(options),
      version_(kwinVersion()),
      sessionBus_(folder_ / "session_bus"),
      bus_(QDBusConnection::connectToBus(QString::fromStdString(sessionBus_.address()),
                                         QString::fromStdString(sessionBus_.address()))) {
    environment_ = kwinEnvironment(folder(), sessionBus_.address(), options.dataFolder);
    // KWin takes no pictures while it is locked.
    if (version_ > 5 || options.locks) {
        const auto pixels = [&](int points) {
            return static_cast<int>(std::lround(points * options.scale));
        };
        screen_.emplace(PrivateServer::virtualScreen(
            {pixels(options.size.width) * options.outputs, pixels(options.size.height)}));
    }
    start();
    if (options.locks) {
        loginManager_ = std::make_unique<LoginManager>();
        bus_.registerVirtualObject(loginPath, loginManager_.get());
        bus_.registerService(QStringLiteral("org.freedesktop.login1"));
    }
}

bool KWinSession::hasScript() const {
    return isLoaded("/Scripting", "org.kde.kwin.Scripting", "isScriptLoaded", "vantrel");
}

bool KWinSession::hearsPresses() const {
    return isLoaded("/Effects", "org.kde.kwin.Effects", "isEffectLoaded", "vantrel-presses");
}

bool KWinSession::isLoaded(const char* path, const char* interface, const char* method,
                           const char* name) const {
    return call(kwinService, QString::fromLatin1(path), interface, method,
                {QString::fromLatin1(name)})
        .arguments()
        .at(0)
        .toBool();
}

void KWinSession::lock() const {
    const auto service = QStringLiteral("org.freedesktop.ScreenSaver");
    bus_.send(QDBusMessage::createMethodCall(service, QStringLiteral("/ScreenSaver"), service,
                                             QStringLiteral("Lock")));
}

void KWinSession::unlock() const {
    bus_.send(QDBusMessage::createSignal(
        loginPath, QStringLiteral("org.freedesktop.login1.Session"), QStringLiteral("Unlock")));
}

KWinSession::~KWinSession() {
    QDBusConnection::disconnectFromBus(bus_.name());
}

void KWinSession::start() {
    kwin_.emplace(kwinCommand(folder(), environment_,
                              {.size = options_.size,
                               .outputs = options_.outputs,
                               .scale = options_.scale,
                               .xwayland = options_.xwayland,
                               .locks = options_.locks,
                               .screen = screen_ ? screen_->display() : ""}));
    awaitReady();
}

void KWinSession::awaitReady() {
    const auto isReady = [&] {
        return bus_.interface()->isServiceRegistered(kwinService).value() &&
               (!options_.xwayland || environment().contains("DISPLAY"));
    };
    if (!waitFor([&] { return !kwin_->running() || isReady(); }, 30s) || !kwin_->running()) {
        throw std::runtime_error("KWin did not start: " + readFile(folder() / "kwin.err"));
    }
    client_.emplace(folder() / "runtime/wayland-0");
    if (screen_) {
        placeOutputs(screen_->display(), options_.size.width);
        // On an X server Plasma 6 does not take the scale that it is started with.
        for (int output = 0; options_.scale != 1 && output < options_.outputs; ++output) {
            client_->scaleOutput(static_cast<std::size_t>(output), options_.scale);
        }
    }
}

void KWinSession::restart() {
    client_.reset();
    std::filesystem::remove(folder() / "display");
    kill(pid(), SIGKILL);
    waitFor([&] { return !bus_.interface()->isServiceRegistered(kwinService).value(); });
    awaitReady();
}

pid_t KWinSession::pid() const {
    return static_cast<pid_t>(bus_.interface()->servicePid(kwinService).value());
}

Environment KWinSession::environment() const {
    auto environment = environment_;
    environment["WAYLAND_DISPLAY"] = "wayland-0";
    return options_.xwayland ? withXwaylandOf(folder(), environment) : environment;
}

NativeWindow KWinSession::startFullScreenWindow() const {
    return {environment(), folder(), [this] {
                return evaluate("(workspace.activeWindow || workspace.activeClient || {})"
                                ".fullScreen === true") == true;
            }};
}

std::string KWinSession::complaints() const {
    std::string complaints;
    std::ifstream log(folder() / "kwin.err");
    for (std::string line; std::getline(log, line);) {
        if (line.find("vantrel") != std::string::npos ||
            line.find("marks.qml") != std::string::npos) {
            complaints += line + "\n";
        }
    }
    return complaints;
}

nlohmann::json KWinSession::evaluate(const std::string& expression) const {
    static int count = 0;
    const auto name = QStringLiteral("evaluate-%1").arg(++count);
    const auto script = folder() / (name.toStdString() + ".js");
    std::ofstream(script) << "callDBus('" << bus_.baseService().toStdString()
                          << "', '/evaluation', 'org.vantrel.Test', 'Tell', JSON.stringify("
                          << expression << "));\n";
    struct Listener final : QDBusVirtualObject {
        std::optional<std::string> told;
        [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
        bool handleMessage(const QDBusMessage& message,
                           const QDBusConnection& connection) override {
            told = message.arguments().value(0).toString().toStdString();
            // KWin waits for it, and a bus takes only so many calls that wait.
            return connection.send(message.createReply());
        }
    } listener;
    auto bus = bus_;
    bus.registerVirtualObject(QStringLiteral("/evaluation"), &listener);
    const auto scripting = QStringLiteral("/Scripting");
    constexpr auto interface = "org.kde.kwin.Scripting";
    const int number = call(kwinService, scripting, interface, "loadScript",
                            {QString::fromStdString(script), name})
                           .arguments()
                           .at(0)
                           .toInt();
    const auto path = version_ > 5 ? QStringLiteral("/Scripting/Script%1").arg(number)
                                   : QStringLiteral("/%1").arg(number);
    call(kwinService, path, "org.kde.kwin.Script", "run");
    const auto hasTold = [&] {
        QCoreApplication::processEvents();
        return listener.told.has_value();
    };
    // Another script may have its number.
    if (!waitFor(hasTold, 1s)) {
        call(kwinService, scripting, interface, "start");
    }
    const bool isTold = waitFor(hasTold);
    bus.unregisterObject(QStringLiteral("/evaluation"));
    call(kwinService, scripting, interface, "unloadScript", {name});
    if (!isTold) {
        throw std::runtime_error(expression + ": " + readFile(folder() / "kwin.err"));
    }
    return nlohmann::json::parse(*listener.told);
}

QImage KWinSession::picture(bool withPointer) const {
    if (screen_) {
        const XConnection connection(screen_->display());
        const auto& screen = connection.screen();
        const PixelRect area{0, 0, screen.width_in_pixels, screen.height_in_pixels};
        const auto shown = captureScreen(connection, area);
        return QImage(reinterpret_cast<const uchar*>(shown.pixels.data()), area.width, area.height,
                      QImage::Format_RGB32)
            .copy();
    }
    return capture("CaptureWorkspace", {}, withPointer);
}

QImage KWinSession::displayPicture(int output) const {
    if (screen_) {
        const auto [width, height] = options_.size;
        return picture().copy(output * width, 0, width, height);
    }
    return capture("CaptureScreen", {QStringLiteral("Virtual-%1").arg(output)}, false);
}

QRgb KWinSession::pixel(QPoint place) const {
    if (screen_) {
        return pixelAt(XConnection(screen_->display()), {place.x(), place.y()});
    }
    return capture("CaptureArea", {place.x(), place.y(), 1U, 1U}, false).pixel(0, 0);
}

QImage KWinSession::capture(const char* method, const QVariantList& area, bool withPointer) const {
    PipeReader reader;
    // The descriptor must be closed by the time that the end is waited for.
    const auto answer = call(
        kwinService, QStringLiteral("/org/kde/KWin/ScreenShot2"), "org.kde.KWin.ScreenShot2",
        method,
        area + QVariantList{QVariantMap{{QStringLiteral("include-cursor"), withPointer},
                                        {QStringLiteral("native-resolution"), true}},
                            QVariant::fromValue(QDBusUnixFileDescriptor(reader.descriptor()))});
    const auto results = qdbus_cast<QVariantMap>(answer.arguments().at(0));
    const auto& bytes = reader.finish();
    return QImage(reinterpret_cast<const uchar*>(bytes.data()),
                  results[QStringLiteral("width")].toInt(),
                  results[QStringLiteral("height")].toInt(),
                  results[QStringLiteral("stride")].toInt(), QImage::Format_ARGB32_Premultiplied)
        .convertToFormat(QImage::Format_RGB32);
}

void KWinSession::click(int button) const {
    client_->press(button, true);
    client_->press(button, false);
}

QDBusMessage KWinSession::call(const QString& service, const QString& path, const char* interface,
                               const char* method, const QVariantList& arguments) const {
    return callOn(bus_, service, path, interface, method, arguments);
}

} // namespace vantrel::desktop
