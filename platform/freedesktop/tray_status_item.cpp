#include "platform/freedesktop/tray_status_item.h"

#include "platform/freedesktop/bus_call.h"

#include <algorithm>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>

namespace vantrel {

namespace {

constexpr QLatin1String hostService("org.kde.StatusNotifierWatcher");

bool sameKind(const MenuEntry& a, const MenuEntry& b) {
    return a.title.empty() == b.title.empty() && a.checked.has_value() == b.checked.has_value();
}

} // namespace

TrayStatusItem::TrayStatusItem(SystemTray& tray)
    : tray_(tray), trayChanges_(tray.onChange([this] { makeWhenPossible(); })) {
    // What the program shows on the screen comes first.
    QMetaObject::invokeMethod(
        this, [this] { lookForHost(); }, Qt::QueuedConnection);
}

// While the item is there the toolkit takes the entries back from the desktop; it forgets them
// later.
TrayStatusItem::~TrayStatusItem() {
    menu_.clear();
}

void TrayStatusItem::lookForHost() {
    const auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        setHost(false);
        return;
    }
    auto* appearance =
        new QDBusServiceWatcher(hostService, bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(appearance, &QDBusServiceWatcher::serviceRegistered, this, [this] { setHost(true); });
    const auto message = busCall(QStringLiteral("NameHasOwner"), {QString(hostService)});
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(message), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<bool> reply(*answer);
        setHost(reply.isValid() && reply.value());
    });
}

void TrayStatusItem::setHost(bool present) {
    host_ = host_.value_or(false) || present;
    makeWhenPossible();
}

void TrayStatusItem::makeWhenPossible() {
    if (item_ || !host_ || !(*host_ || tray_.present())) {
        return;
    }
    item_ = std::make_unique<QSystemTrayIcon>(image_);
    connect(item_.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                // The second of two quick clicks is one as well.
                const bool clicked =
                    reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick;
                if (clicked && action_) {
                    action_();
                }
            });
    item_->setToolTip(description_);
    item_->setContextMenu(&menu_);
    item_->show();
}

void TrayStatusItem::setImage(const QIcon& image, const std::string& description) {
    image_ = image;
    description_ = QString::fromStdString(description);
    if (item_) {
        item_->setIcon(image_);
        item_->setToolTip(description_);
    }
}

// An action that stays is changed instead of replaced: the menu may be open, here or in the
// desktop's panel.
void TrayStatusItem::setMenu(std::vector<MenuEntry> entries) {
    const bool stays = std::ranges::equal(entries, entries_, sameKind);
    entries_ = std::move(entries);
    if (!stays) {
        menu_.clear();
        choices_ = std::make_unique<QActionGroup>(nullptr);
        // By number, since the entries are replaced while the actions stay.
        // NOLINTNEXTLINE(modernize-loop-convert)
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            auto* action = menu_.addAction(QString(), this, [this, i] {
                const auto act = entries_[i].action; // which may lead to other entries
                updateMenuEntries();
                act();
            });
            action->setSeparator(entries_[i].title.empty());
            if (entries_[i].checked) {
                action->setCheckable(true);
                choices_->addAction(action);
            }
        }
    }
    updateMenuEntries();
}

// Also undoes what a click has checked: that is for the state to say.
void TrayStatusItem::updateMenuEntries() {
    const auto actions = menu_.actions();
    for (qsizetype i = 0; i < actions.size(); ++i) {
        const auto& entry = entries_[static_cast<std::size_t>(i)];
        actions[i]->setText(QString::fromStdString(entry.title));
        actions[i]->setChecked(entry.checked.value_or(false));
        actions[i]->setShortcut(QKeySequence(QString::fromStdString(entry.shortcut)));
    }
}

std::optional<QRect> TrayStatusItem::place() const {
    const QRect place = item_ ? item_->geometry() : QRect();
    return place.isEmpty() ? std::nullopt : std::optional(place);
}

} // namespace vantrel
