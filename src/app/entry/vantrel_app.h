#pragma once

#include "app/shell/app_delegate.h"
#include "overlay/drawn_cursor.h"
#include "platform/absent.h"
#include "platform/freedesktop/autostart_login_item.h"
#include "platform/freedesktop/command_socket.h"
#include "platform/freedesktop/control_service.h"
#include "platform/freedesktop/desktop_workspace.h"
#include "platform/freedesktop/environment_locale.h"
#include "platform/freedesktop/file_user_defaults.h"
#include "platform/freedesktop/installed_bundle.h"
#include "platform/freedesktop/portal_appearance.h"
#include "platform/freedesktop/portal_shortcuts.h"
#include "platform/freedesktop/qt_main_queue.h"
#include "platform/freedesktop/session_hot_keys.h"
#include "platform/freedesktop/toolkit_alert_sound.h"
#include "platform/freedesktop/tray_status_item.h"
#include "platform/gnome/shell_extension.h"
#include "platform/gnome/shell_status_item.h"
#include "platform/kwin/desktop_shortcuts.h"
#include "platform/kwin/kwin_script.h"
#include "platform/layershell/window_place.h"
#include "platform/system_clock.h"
#include "platform/wayland/desktop.h"
#include "platform/wayland/keyboard.h"
#include "platform/x11/cursor_images.h"
#include "platform/x11/desktop.h"
#include "platform/x11/instance.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace vantrel {

// The program on this machine's desktop, from its launch to its end. Needs the toolkit's
// application object.
class VantrelApp final : private Application {
public:
    // To the session, of which there is at least one.
    struct Connections {
        std::unique_ptr<x11::Connection> server;
        std::unique_ptr<x11::Instance> instance; // on that
        std::unique_ptr<wayland::Connection> compositor;
    };

    // The socket, on which it takes commands, must outlive it. The callback comes once, when the
    // command that it was started for was carried out.
    VantrelApp(Connections connections, CommandSocket& commands, const Command& command,
               std::function<void()> launched);
    ~VantrelApp() override;
    VantrelApp(const VantrelApp&) = delete;
    VantrelApp& operator=(const VantrelApp&) = delete;

    // What was changed is on disk afterwards, and no overlay is on the screen.
    void end();
    // By what marks are shown.
    [[nodiscard]] SessionMeans means() { return delegate_.state().means(); }
    // Whether the compositor goes in that time or has gone. Called by any thread.
    [[nodiscard]] bool seesCompositorGo(std::chrono::milliseconds limit) const {
        return compositor_ && compositor_->seesEnd(limit);
    }
    // Whether the session has gone, before all of its connections need be.
    [[nodiscard]] bool hasLostSession() const {
        return (server_ && server_->isLost()) || (compositor_ && compositor_->isLost());
    }
    // False after an end at which the disk did not take the save in time.
    [[nodiscard]] bool isSaved() const { return saved_; }

private:
    void terminate() override;
    void activate(WId window) override;
    [[nodiscard]] bool canActivate() const override;
    bool hang(QWidget& window, const EdgePlace& place) override;
    [[nodiscard]] std::string compositor() const override;
    [[nodiscard]] SessionOffer offer() const override;
    [[nodiscard]] Desktop desktop();
    void joinServer();
    void joinCompositor();
    void joinDesktop(const QDBusConnection& bus);
    [[nodiscard]] bool drawsItself(const QDBusConnection& bus);
    void joinShortcuts(const QDBusConnection& bus);
    [[nodiscard]] KeymapKeyboard& keyboard();
    [[nodiscard]] RemoteControl remoteControl();
    void takeCommands();
    void observeDesktop();

    // In a Wayland session only if nothing else draws, as many compositors start their X server at
    // the first connection.
    std::unique_ptr<x11::Connection> server_;
    std::unique_ptr<x11::Instance> instance_;
    std::unique_ptr<wayland::Connection> compositor_; // of a Wayland session
    CommandSocket& commands_;
    SystemClock clock_;
    AbsentDesktop absent_;
    std::optional<x11::X11Desktop> x11_;
    SessionOffer offer_;
    std::optional<layershell::HangWindow*> hangWindow_; // null where windows do not hang
    std::optional<wayland::EventLoop> eventLoop_;
    std::optional<wayland::WaylandKeyboard> waylandKeyboard_;
    // Where the compositor lets us draw and tells where the pointer is.
    std::optional<wayland::WaylandDesktop> wayland_;
    FileUserDefaults defaults_;
    QtMainQueue mainQueue_;
    AutostartLoginItem loginItem_;
    DesktopWorkspace workspace_;
    InstalledBundle bundle_;
    EnvironmentLocale locale_;
    DrawnCursor drawnCursor_;
    std::optional<x11::X11CursorImages> cursors_;
    ToolkitAlertSound alertSound_;
    NoMarks noMarks_;
    std::optional<ShellExtension> shell_; // in a Wayland session
    std::optional<KWinScript> kwin_;
    std::optional<DesktopShortcuts> kwinShortcuts_;
    std::optional<PortalShortcuts> portalShortcuts_;
    std::optional<PortalAppearance> appearance_;
    Subscription keyboardChanges_;
    std::optional<EitherMarks> sessionMarks_;     // of both
    std::optional<SessionHotKeys> portalHotKeys_; // where the compositor lets us draw
    std::optional<SessionHotKeys> kwinHotKeys_;
    std::optional<SessionHotKeys> sessionHotKeys_;
    std::optional<TrayStatusItem> statusItem_;
    std::optional<ShellStatusItem> shellStatusItem_;
    AppDelegate delegate_;
    std::optional<ControlService> control_;
    bool ended_ = false;
    bool saved_ = true;
    std::vector<Subscription> subscriptions_;
};

} // namespace vantrel
