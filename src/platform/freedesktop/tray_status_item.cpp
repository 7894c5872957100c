#include "platform/freedesktop/tray_status_item.h"

#include "platform/native_windows.h"

#include <algorithm>

namespace vantrel {

namespace {

bool sameKind(const MenuEntry& a, const MenuEntry& b) {
    return a.title.empty() == b.title.empty() && a.checked.has_value() == b.checked.has_value();
}

} // namespace

TrayStatusItem::TrayStatusItem(SystemTray& tray)
    : tray_(tray),
      notifier_(
          [this](QPoint place) {
              clicked_ = place;
              activate();
              clicked_ = {};
          },
          [this] { updateIcon(); }),
      trayChanges_(tray.onChange([this] { updateIcon(); })) {}

// While the icon is there the toolkit takes the entries back from it; it forgets them later.
TrayStatusItem::~TrayStatusItem() {
    menu_.clear();
}

void TrayStatusItem::activate() const {
    if (action_) {
        action_();
    }
}

// The toolkit follows a tray that goes and comes back.
void TrayStatusItem::updateIcon() {
    if (onTrayChange) {
        onTrayChange();
    }
    if (notifier_.hasHost() == true) {
        icon_.reset();
    }
    if (icon_ || notifier_.hasHost() != false || !tray_.present()) {
        return;
    }
    icon_ = std::make_unique<QSystemTrayIcon>(image_);
    connect(icon_.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                // The second of two quick clicks is one as well.
                if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick) {
                    activate();
                }
            });
    icon_->setToolTip(description_);
    icon_->setContextMenu(&menu_);
    icon_->show();
}

void TrayStatusItem::setImage(const QIcon& image, const std::string& description) {
    image_ = image;
    description_ = QString::fromStdString(description);
    notifier_.setImage(image_, description_);
    if (icon_) {
        icon_->setIcon(image_);
        icon_->setToolTip(description_);
    }
}

// An action that stays is changed instead of replaced: the menu may be open.
void TrayStatusItem::setMenu(std::vector<MenuEntry> entries) {
    notifier_.setMenu(entries);
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
    // Panels of a compositor tell places in the toolkit's points; of others nobody knows in which.
    const bool isClickKnown = hasNativeWindows() && !clicked_.isNull();
    const QRect place = icon_          ? icon_->geometry()
                        : isClickKnown ? QRect(clicked_, QSize(1, 1))
                                       : QRect();
    return place.isEmpty() ? std::nullopt : std::optional(place);
}

} // namespace vantrel
