#pragma once

#include "platform/control.h"
#include "platform/freedesktop/bus_menu.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QIcon>
#include <QList>
#include <QObject>
#include <QPoint>
#include <QString>

#include <functional>
#include <optional>

namespace vantrel {

// A picture as the bus has it: (iiay), each pixel as alpha, red, green and blue.
struct BusPicture {
    int width = 0;
    int height = 0;
    QByteArray pixels{};

    static auto members(auto& self) { return std::tie(self.width, self.height, self.pixels); }
};
using BusPictures = QList<BusPicture>;

// (sa(iiay)ss)
struct BusToolTip {
    QString iconName{};
    BusPictures pictures{};
    QString title{};
    QString text{};

    static auto members(auto& self) {
        return std::tie(self.iconName, self.pictures, self.title, self.text);
    }
};

// The interface org.kde.StatusNotifierItem, by which panels show the items of other programs. The
// names are those on the bus.
class StatusNotifierAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconName READ noName)
    Q_PROPERTY(vantrel::BusPictures IconPixmap READ iconPixmap)
    Q_PROPERTY(QString OverlayIconName READ noName)
    Q_PROPERTY(QString AttentionIconName READ noName)
    Q_PROPERTY(vantrel::BusToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QDBusObjectPath Menu READ menu)

public:
    // The callback gets the place of the click.
    StatusNotifierAdaptor(QObject* object, std::function<void(QPoint)> activated);

    void setImage(const QIcon& image, const QString& description);

    [[nodiscard]] QString category() const { return QStringLiteral("ApplicationStatus"); }
    [[nodiscard]] QString id() const { return QStringLiteral("vantrel"); }
    [[nodiscard]] QString title() const { return QStringLiteral("Vantrel"); }
    [[nodiscard]] QString status() const { return QStringLiteral("Active"); }
    [[nodiscard]] int windowId() const { return 0; }
    [[nodiscard]] QString noName() const { return {}; }
    [[nodiscard]] BusPictures iconPixmap() const;
    [[nodiscard]] BusToolTip toolTip() const { return {.title = description_}; }
    [[nodiscard]] bool itemIsMenu() const { return false; }
    [[nodiscard]] QDBusObjectPath menu() const;

    Q_SLOT void Activate(int x, int y) {
        activated_({x, y});
        qunsetenv(activationToken);
    }
    // Comes before Activate, from desktops that ask so who may come to the front. The toolkit takes
    // it from there.
    Q_SLOT void ProvideXdgActivationToken(const QString& token) {
        qputenv(activationToken, token.toUtf8());
    }
    Q_SLOT void SecondaryActivate(int /*x*/, int /*y*/) { qunsetenv(activationToken); }
    // From panels that do not show the menu by themselves.
    Q_SLOT void ContextMenu(int x, int y) { Activate(x, y); }
    Q_SLOT void Scroll(int /*delta*/, const QString& /*orientation*/) {}

    Q_SIGNAL void NewIcon();
    Q_SIGNAL void NewToolTip();

private:
    std::function<void(QPoint)> activated_;
    QIcon image_;
    QString description_;
};

// The program's item as panels find it on the session bus. It makes itself known to the watcher,
// which tells the panels, as often as one comes; first in a later turn of the event loop, as what
// the program shows on the screen comes before. Nothing waits for an answer: panels may hang.
class StatusNotifier final : public QObject {
    Q_OBJECT

public:
    // The first callback gets the place of a click as the panel has it, 0, 0 where that does not
    // know. The second one comes with each change of hasHost.
    StatusNotifier(std::function<void(QPoint)> activated, std::function<void()> hostChanged);
    ~StatusNotifier() override;
    Q_DISABLE_COPY_MOVE(StatusNotifier)

    void setImage(const QIcon& image, const QString& description) {
        item_->setImage(image, description);
    }
    void setMenu(std::vector<MenuEntry> entries) { menu_->setEntries(std::move(entries)); }

    // Whether a panel shows such items. Absent as long as that is not known, such as while the
    // watcher hangs.
    [[nodiscard]] std::optional<bool> hasHost() const { return hasHost_; }

private:
    void start();
    Q_SLOT void meetWatcher();
    Q_SLOT void askForHost();
    void setHost(std::optional<bool> present);

    std::function<void()> hostChanged_;
    QObject menuObject_;
    StatusNotifierAdaptor* item_;
    BusMenu* menu_;
    std::optional<bool> hasHost_;
    int question_ = 0; // the latest
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::BusPicture)
Q_DECLARE_METATYPE(vantrel::BusToolTip)
