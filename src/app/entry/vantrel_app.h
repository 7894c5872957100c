#pragma once

#include "app/shell/app_delegate.h"
#include "overlay/drawn_cursor.h"
#include "platform/freedesktop/autostart_login_item.h"
#include "platform/freedesktop/command_socket.h"
#include "platform/freedesktop/control_service.h"
#include "platform/freedesktop/desktop_workspace.h"
#include "platform/freedesktop/environment_locale.h"
#include "platform/freedesktop/file_user_defaults.h"
#include "platform/freedesktop/installed_bundle.h"
#include "platform/freedesktop/portal_shortcuts.h"
#include "platform/freedesktop/qt_main_queue.h"
#include "platform/freedesktop/session_hot_keys.h"
#include "platform/freedesktop/tray_status_item.h"
#include "platform/gnome/shell_extension.h"
#include "platform/gnome/shell_status_item.h"
#include "platform/kwin/desktop_shortcuts.h"
#include "platform/kwin/kwin_script.h"
#include "platform/wayland/desktop.h"
#include "platform/x11/cursor_images.h"
#include "platform/x11/desktop.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace vantrel {

// The program on this machine's desktop, from its launch to its end. Needs the toolkit's
// application object.
class VantrelApp final : private Application {
public:
    // The connection and the socket, on which it takes commands, must outlive it. The callback
    // comes once, when the command that it was started for was carried out.
    VantrelApp(x11::Connection& connection, CommandSocket& commands, const Command& command,
               std::function<void()> launched);
    ~VantrelApp() override;
    VantrelApp(const VantrelApp&) = delete;
    VantrelApp& operator=(const VantrelApp&) = delete;

    // What was changed is on disk afterwards, and no overlay is on the screen.
    void end();
    // By what marks are shown, as long as the desktop itself draws none.
    [[nodiscard]] SessionMeans means() const { return meansOf(offer_); }
    // Whether the session has gone, before all of its connections need be.
    [[nodiscard]] bool hasLostSession() const {
        return connection_.isLost() || (compositor_ && compositor_->isLost());
    }
    // False after an end at which the disk did not take the save in time.
    [[nodiscard]] bool isSaved() const { return saved_; }

private:
    void terminate() override;
    void activate(WId window) override;
    [[nodiscard]] std::string compositor() const override;
    [[nodiscard]] SessionOffer offer() const override;
    [[nodiscard]] Desktop desktop();
    void joinCompositor();
    void joinWaylandSession();
    [[nodiscard]] int keyOf(std::uint8_t keycode, std::uint32_t layout) const;
    [[nodiscard]] RemoteControl remoteControl();
    void takeCommands();
    void observeDesktop();

    x11::Connection& connection_;
    CommandSocket& commands_;
    x11::X11Desktop x11_;
    SessionOffer offer_;
    // Where the compositor lets us draw and tells where the pointer is.
    std::unique_ptr<wayland::Connection> compositor_;
    std::optional<wayland::WaylandDesktop> wayland_;
    FileUserDefaults defaults_;
    QtMainQueue mainQueue_;
    AutostartLoginItem loginItem_;
    DesktopWorkspace workspace_;
    InstalledBundle bundle_;
    EnvironmentLocale locale_;
    DrawnCursor drawnCursor_;
    x11::X11CursorImages cursors_{connection_, drawnCursor_};
    NoMarks noMarks_;
    std::optional<ShellExtension> shell_; // in a Wayland session
    std::optional<KWinScript> kwin_;
    std::optional<DesktopShortcuts> kwinShortcuts_;
    std::optional<PortalShortcuts> portalShortcuts_;
    Subscription keyboardChanges_;
    std::optional<EitherMarks> sessionMarks_;     // of both
    std::optional<SessionHotKeys> portalHotKeys_; // where the compositor lets us draw
    std::optional<SessionHotKeys> kwinHotKeys_;
    std::optional<SessionHotKeys> sessionHotKeys_;
    TrayStatusItem statusItem_{x11_.systemTray};
    std::optional<ShellStatusItem> shellStatusItem_;
    AppDelegate delegate_;
    std::optional<ControlService> control_;
    bool ended_ = false;
    bool saved_ = true;
    std::vector<Subscription> subscriptions_;
};

} // namespace vantrel
