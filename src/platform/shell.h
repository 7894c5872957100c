#pragma once

#include "platform/session_means.h"
#include "platform/subscription.h"

#include <QIcon>
#include <QMargins>
#include <QRect>
#include <qwindowdefs.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

class QScreen;
class QWidget;

// What the program shows in the desktop's own surfaces.

namespace vantrel {

// One line of a menu; an empty title makes a dividing line. Titles are UTF-8.
struct MenuEntry {
    std::string title;
    std::function<void()> action{};
    std::optional<bool> checked{}; // of one of several choices
    std::string shortcut{};        // in portable form, such as "Ctrl+,"; shown, not listened for

    // The same to look at.
    [[nodiscard]] bool looksLike(const MenuEntry& other) const {
        return title == other.title && checked == other.checked && shortcut == other.shortcut;
    }
};

// The program's item in the desktop's tray. It shows as soon as there is a tray, and again when the
// tray comes back.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    // A click on the item.
    virtual void setAction(std::function<void()> action) = 0;
    virtual void setImage(const QIcon& image, const std::string& description) = 0;
    // Some desktops show nothing but this of the item.
    virtual void setMenu(std::vector<MenuEntry> entries) = 0;
    // Where it is, in the coordinates of the toolkit's windows; absent when the desktop does not
    // tell.
    [[nodiscard]] virtual std::optional<QRect> place() const = 0;
};

// The tray of a desktop that takes icons in as windows.
class SystemTray {
public:
    virtual ~SystemTray() = default;

    [[nodiscard]] virtual bool present() const = 0;
    [[nodiscard]] virtual Subscription onChange(std::function<void()> callback) = 0;
};

// How its user wants the desktop's windows.
struct Appearance {
    bool dark = false;
    double textScale = 1; // of the usual size
};

class AlertSound {
public:
    virtual ~AlertSound() = default;

    virtual void beep() = 0;
};

// Where a window hangs: at edges of a display, beside what the desktop shows there, and so many
// points from that. In the middle where there are none.
struct EdgePlace {
    QScreen* display = nullptr; // null: whichever the desktop likes
    Qt::Edges edges{};
    QMargins distance{};

    bool operator==(const EdgePlace&) const = default;
};

// The running program, as the desktop knows it.
class Application {
public:
    virtual ~Application() = default;

    // Ends it, in a later turn of the event loop.
    virtual void terminate() = 0;
    // Brings a window of it that is on the screen to the front and gives it the keyboard.
    virtual void activate(WId window) = 0;
    // Whether it could now. A compositor may let only a window that comes anew be in front.
    [[nodiscard]] virtual bool canActivate() const = 0;
    // Has a window come there when it is shown, where windows cannot be moved. Whether it does: its
    // place is the desktop's affair otherwise.
    virtual bool hang(QWidget& window, const EdgePlace& place) = 0;
    // The name that the session's compositor goes by, as "sway"; empty where nobody tells.
    [[nodiscard]] virtual std::string compositor() const = 0;
    // What the session has, besides the marks that the desktop itself may draw.
    [[nodiscard]] virtual SessionOffer offer() const = 0;
};

} // namespace vantrel
