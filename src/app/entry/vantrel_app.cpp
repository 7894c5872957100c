#include "app/entry/vantrel_app.h"

#include "app/entry/running_instance.h"
#include "overlay/effect_drawing.h"
#include "platform/freedesktop/bus_call.h"
#include "platform/keys/key_table.h"
#include "platform/native_windows.h"
#include "platform/x11/activation.h"
#include "ui/components/style.h"

#include <QApplication>
#include <QEventLoop>
#include <QLibrary>
#include <QPointer>
#include <QSessionManager>
#include <QTimer>
#include <QWidget>

#include <chrono>
#include <utility>

namespace vantrel {

namespace {

// With what marks are shown, of either desktop.
struct DisplayParts {
    Screens& screens;
    DisplayLinks& displayLinks;
    Pointer& pointer;
    EventMonitors& eventMonitors;
    OverlayWindows& overlayWindows;
    Transaction& transaction;
};

DisplayParts partsOf(auto& desktop) {
    return {.screens = desktop.screens,
            .displayLinks = desktop.displayLinks,
            .pointer = desktop.pointer,
            .eventMonitors = desktop.eventMonitors,
            .overlayWindows = desktop.overlayWindows,
            .transaction = desktop.transaction};
}

} // namespace

VantrelApp::VantrelApp(Connections connections, CommandSocket& commands, const Command& command,
                       std::function<void()> launched)
    : server_(std::move(connections.server)),
      instance_(std::move(connections.instance)),
      compositor_(std::move(connections.compositor)),
      commands_(commands),
      loginItem_(runningExecutable()),
      delegate_(desktop()) {
    delegate_.applicationDidFinishLaunching(command);
    observeDesktop();
    // Those that came in the meantime have their turn after the launch.
    mainQueue_.async([this, delegate = QPointer(&delegate_), launched = std::move(launched)] {
        if (delegate) {
            // What the launch has not used is of no use any more.
            qunsetenv(activationToken);
            takeCommands();
            launched();
        }
    });
}

VantrelApp::~VantrelApp() {
    end();
}

Desktop VantrelApp::desktop() {
    if (server_) {
        x11_.emplace(*server_);
    }
    if (compositor_ || server_->isXwayland()) {
        joinCompositor();
        joinDesktop(QDBusConnection::sessionBus());
    }
    cursors_.emplace(server_.get(), drawnCursor_);
    statusItem_.emplace(x11_ ? static_cast<SystemTray&>(x11_->systemTray) : absent_.systemTray);
    if (shell_) {
        shellStatusItem_.emplace(*shell_, *statusItem_);
    }
    const auto seen = wayland_ ? partsOf(*wayland_) : x11_ ? partsOf(*x11_) : partsOf(absent_);
    return {.clock = clock_,
            .mainQueue = mainQueue_,
            .screens = seen.screens,
            .displayLinks = seen.displayLinks,
            .cursors = *cursors_,
            .pointer = seen.pointer,
            .eventMonitors = seen.eventMonitors,
            .keyboard = keyboard(),
            .hotKeys = sessionHotKeys_ ? static_cast<HotKeys&>(*sessionHotKeys_) : x11_->hotKeys,
            .marks = sessionMarks_ ? static_cast<Marks&>(*sessionMarks_) : noMarks_,
            .overlayWindows = seen.overlayWindows,
            .transaction = seen.transaction,
            .locale = locale_,
            .bundle = bundle_,
            .userDefaults = defaults_,
            .loginItem = loginItem_,
            .workspace = workspace_,
            .statusItem =
                shellStatusItem_ ? static_cast<StatusItem&>(*shellStatusItem_) : *statusItem_,
            .alertSound = x11_ ? static_cast<AlertSound&>(x11_->alertSound) : alertSound_,
            .application = *this};
}

SessionOffer VantrelApp::offer() const {
    auto offer = offer_;
    offer.portal = portalShortcuts_ && portalShortcuts_->takesKeys();
    return offer;
}

void VantrelApp::joinCompositor() {
    constexpr std::chrono::milliseconds limit(1000);
    offer_.wayland = true;
    offer_.xwayland = server_ != nullptr;
    if (!compositor_) {
        compositor_ = wayland::Connection::open({}, limit);
    }
    if (compositor_) {
        waylandKeyboard_.emplace(*compositor_);
        offer_.layerShell = compositor_->hasLayerShell();
        offer_.cursorSessions = compositor_->hasCursorSessions();
    }
    offer_ = heldTo(qgetenv("VANTREL_MEANS").toStdString(), offer_);
    if (meansOf(offer_).drawing == Means::layerShell) {
        wayland_.emplace(*compositor_, clock_);
    } else if (compositor_) {
        eventLoop_.emplace(*compositor_);
    }
}

// Whichever it turns out to be.
void VantrelApp::joinDesktop(const QDBusConnection& bus) {
    shell_.emplace(bus, defaults_, bundle_.dataFolder());
    kwin_.emplace(bus, bundle_.dataFolder(), EffectDrawing::picture);
    sessionMarks_.emplace(*shell_, *kwin_);
    if (!server_ &&
        (!hasNativeWindows() || (meansOf(offer_).drawing == Means::none && !drawsItself(bus)))) {
        joinServer();
    }
    joinShortcuts(bus);
    appearance_.emplace(bus, follow);
}

// The desktop says soon whether it draws the marks.
bool VantrelApp::drawsItself(const QDBusConnection& bus) {
    constexpr std::chrono::seconds limit(3);
    const auto isDecided = [this] { return sessionMarks_->state() != MarksState::none; };
    if (!isDecided() && (isOnBus(bus, QStringLiteral("org.gnome.Shell")) ||
                         isOnBus(bus, QStringLiteral("org.kde.KWin")))) {
        QEventLoop loop;
        QTimer::singleShot(limit, &loop, &QEventLoop::quit);
        const auto changes = sessionMarks_->onChange([&] {
            if (isDecided()) {
                loop.quit();
            }
        });
        loop.exec();
    }
    return sessionMarks_->state() == MarksState::available;
}

// Of a Wayland session. Who knows that server alone finds this instance there.
void VantrelApp::joinServer() {
    const ServerTimeout timeout;
    x11::ConnectionError error;
    auto server = x11::Connection::open({}, error);
    // Another one may be named, which is of no use but to the windows that are on it.
    if (server && (server->isXwayland() || !hasNativeWindows())) {
        server_ = std::move(server);
        instance_ = x11::Instance::claim(*server_, commands_.address());
        x11_.emplace(*server_);
        offer_.xwayland = true;
    }
}

void VantrelApp::joinShortcuts(const QDBusConnection& bus) {
    const auto nameOf = [this](auto number) {
        const auto mode = HotkeyManager::modeOf(number);
        return QString::fromStdString(delegate_.state().shortcutTitle(mode));
    };
    kwinShortcuts_.emplace(bus, *kwin_,
                           DesktopShortcuts::Means{
                               .keysOf =
                                   [this](const auto& keys, auto layout) {
                                       return keyboard().toolkitKeys(keys.keycode, keys.modifiers,
                                                                     layout);
                                   },
                               .nameOf = nameOf,
                           });
    keyboardChanges_ = keyboard().changes.add([this] { kwinShortcuts_->grabAgain(); });
    auto& own = x11_ ? static_cast<HotKeys&>(x11_->hotKeys) : absent_.hotKeys;
    if (wayland_) {
        portalShortcuts_.emplace(
            bus, PortalShortcuts::Means{
                     .symbolOf = [this](auto keycode) { return keyboard().symbolOf(keycode); },
                     .nameOf = nameOf,
                 });
        portalHotKeys_.emplace(*portalShortcuts_, own, keycodeOf);
    }
    auto& others = portalHotKeys_ ? static_cast<HotKeys&>(*portalHotKeys_) : own;
    kwinHotKeys_.emplace(*kwinShortcuts_, others, keycodeOf);
    sessionHotKeys_.emplace(*shell_, *kwinHotKeys_, keycodeOf);
}

// That of the toolkit's windows.
KeymapKeyboard& VantrelApp::keyboard() {
    return hasNativeWindows() ? static_cast<KeymapKeyboard&>(*waylandKeyboard_) : x11_->keyboard;
}

void VantrelApp::observeDesktop() {
    // After the delegate has saved.
    subscriptions_.push_back(workspace_.onWillSleep([this] { defaults_.flush(); }));
    subscriptions_.push_back(workspace_.onWillShutDown([this] {
        delegate_.sleep();
        defaults_.flush();
        terminate();
    }));
    if (server_) {
        subscriptions_.push_back(server_->lost.add([this] { terminate(); }));
    }
    if (compositor_) {
        subscriptions_.push_back(compositor_->lost.add([this] { terminate(); }));
    }
    QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, &delegate_,
                     [this](Qt::ApplicationState state) {
                         if (state == Qt::ApplicationActive) {
                             delegate_.applicationDidBecomeActive();
                         }
                     });
    // Whether the program starts with the next session is the login item's business.
    QObject::connect(
        qGuiApp, &QGuiApplication::saveStateRequest, &delegate_,
        [](QSessionManager& manager) { manager.setRestartHint(QSessionManager::RestartNever); });
}

void VantrelApp::takeCommands() {
    commands_.setHandler([this](const CommandRequest& request) -> CommandAnswer {
        if (!request.activationToken.empty()) {
            // The toolkit takes it from there, or nobody does.
            qputenv(activationToken, QByteArray::fromStdString(request.activationToken));
            mainQueue_.async([] { qunsetenv(activationToken); });
        }
        if (const auto command = parseCommand(request.words)) {
            return delegate_.carryOut(*command);
        }
        return {.status = CommandAnswer::Status::wrongUsage,
                .text = delegate_.state().english() ? "unknown command" : "未知命令"};
    });
    control_.emplace(remoteControl());
    const auto announce = [this] { control_->announce(); };
    subscriptions_.push_back(
        delegate_.state().mode().observe([announce](CursorMode) { announce(); }));
    subscriptions_.push_back(
        delegate_.state().clickAvailable().observe([announce](bool) { announce(); }));
    subscriptions_.push_back(delegate_.state().hotkeyError().observe(
        [announce](const std::optional<std::string>&) { announce(); }));
}

RemoteControl VantrelApp::remoteControl() {
    using Action = Command::Action;
    // What a command line could not ask for, the bus cannot either.
    const auto carryOut = [this](Action action, const CommandWords& words) {
        const auto command = parseCommand(words);
        const bool meant = command && command->action == action;
        if (meant) {
            delegate_.carryOut(*command);
        }
        return meant;
    };
    return {
        .setMode = [=](const auto& mode) { return carryOut(Action::setMode, {mode}); },
        .toggle =
            [=](const auto& mode) {
                return carryOut(Action::toggle, {"toggle", mode});
            },
        .openSettings = [this] { delegate_.carryOut({Action::openSettings}); },
        .quit = [this] { delegate_.carryOut({Action::quit}); },
        .status = [this] { return delegate_.status(); },
    };
}

// Also from within an event loop that has not been started yet.
void VantrelApp::terminate() {
    mainQueue_.async([] { QCoreApplication::exit(); });
}

void VantrelApp::activate(WId window) {
    if (!hasNativeWindows()) {
        x11::activateWindow(*server_, static_cast<xcb_window_t>(window));
    }
}

// A compositor wants a token: that of a command, or what the toolkit gets for the window that has
// the keyboard.
bool VantrelApp::canActivate() const {
    return !hasNativeWindows() || qEnvironmentVariableIsSet(activationToken) ||
           QGuiApplication::focusWindow() != nullptr;
}

// A desktop that draws the marks puts the panel to its item as well. What the window is, it
// remains. The module is not there where its library is not.
bool VantrelApp::hang(QWidget& window, const EdgePlace& place) {
    if (!hangWindow_) {
        const bool isMeant = hasNativeWindows() && offer_.layerShell &&
                             sessionMarks_->state() != MarksState::available;
        const auto file = QString::fromStdString(moduleFile(layershell::moduleFile));
        hangWindow_ = isMeant ? reinterpret_cast<layershell::HangWindow*>(
                                    QLibrary::resolve(file, layershell::hangWindow))
                              : nullptr;
    }
    if (*hangWindow_ == nullptr) {
        return false;
    }
    window.winId();
    (*hangWindow_)(*window.windowHandle(), place);
    return true;
}

std::string VantrelApp::compositor() const {
    // sway leaves it to the one who starts it to name the session.
    if (qEnvironmentVariableIsSet("SWAYSOCK")) {
        return "sway";
    }
    return qgetenv("XDG_CURRENT_DESKTOP").split(':').value(0).toStdString();
}

void VantrelApp::end() {
    if (!std::exchange(ended_, true)) {
        commands_.setHandler({});
        delegate_.applicationWillTerminate();
        saved_ = defaults_.flush();
    }
}

} // namespace vantrel
