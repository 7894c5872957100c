#pragma once

#include "platform/status_item.h"
#include "platform/system_tray.h"

#include <QActionGroup>
#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

#include <memory>
#include <optional>

namespace vantrel {

// The status item by the StatusNotifierItem protocol, or by X's system tray protocol where no host
// of the former runs. The toolkit decides between them for good when the first item is made, so
// that waits until there is one of the two.
class TrayStatusItem final : public QObject, public StatusItem {
    Q_OBJECT

public:
    // The tray must outlive the item.
    explicit TrayStatusItem(SystemTray& tray);
    ~TrayStatusItem() override;
    Q_DISABLE_COPY_MOVE(TrayStatusItem)

    void setAction(std::function<void()> action) override { action_ = std::move(action); }
    void setImage(const QIcon& image, const std::string& description) override;
    void setMenu(std::vector<MenuEntry> entries) override;
    [[nodiscard]] std::optional<QRect> place() const override;

private:
    void lookForHost();
    void setHost(bool present);
    void makeWhenPossible();
    void updateMenuEntries();

    SystemTray& tray_;
    std::optional<bool> host_; // whether one runs, once that is known
    QIcon image_;
    QString description_;
    std::function<void()> action_;
    std::vector<MenuEntry> entries_;
    QMenu menu_;
    std::unique_ptr<QActionGroup> choices_; // entries of which one is checked
    std::unique_ptr<QSystemTrayIcon> item_;
    Subscription trayChanges_;
};

} // namespace vantrel
