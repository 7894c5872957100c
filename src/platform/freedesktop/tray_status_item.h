#pragma once

#include "platform/freedesktop/status_notifier.h"
#include "platform/shell.h"

#include <QActionGroup>
#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

#include <memory>
#include <optional>

namespace vantrel {

// The status item by the StatusNotifierItem protocol, or by X's system tray protocol while no host
// of the former runs.
//
// The toolkit would do both by itself; but it decides between them once and for all, and asks the
// desktop's panel, in a call that waits for the answer. So it makes the icons of X's protocol only,
// and these only once it is known that nobody has to be waited for.
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

    // Whether there is a tray, as far as that is known yet.
    [[nodiscard]] bool mayBeShown() const {
        return notifier_.hasHost() != false || tray_.present();
    }
    // Called when it may have changed.
    std::function<void()> onTrayChange;

private:
    void activate() const;
    void updateIcon();
    void updateMenuEntries();

    SystemTray& tray_;
    QIcon image_;
    QString description_;
    std::function<void()> action_;
    QPoint clicked_; // just now, as the panel has it
    StatusNotifier notifier_;

    // Of X's protocol:
    std::vector<MenuEntry> entries_;
    QMenu menu_;
    std::unique_ptr<QActionGroup> choices_; // entries of which one is checked
    std::unique_ptr<QSystemTrayIcon> icon_;
    Subscription trayChanges_;
};

} // namespace vantrel
