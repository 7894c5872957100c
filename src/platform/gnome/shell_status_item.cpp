#include "platform/gnome/shell_status_item.h"

#include <QBuffer>
#include <QPixmap>

#include <utility>

namespace vantrel {

namespace {

constexpr int pictureSize = 64; // pixels, for bars of every scale

QByteArray pictureOf(const QIcon& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.pixmap(pictureSize).save(&buffer, "PNG");
    return bytes;
}

ShellEntry shellEntry(const MenuEntry& entry) {
    const std::uint32_t choice = !entry.checked ? 0 : *entry.checked ? 2 : 1;
    return {QString::fromStdString(entry.title), choice};
}

} // namespace

ShellStatusItem::ShellStatusItem(ShellExtension& extension, TrayStatusItem& tray)
    : extension_(extension), tray_(tray) {
    extension_.onItemClicked = [this](const QRect& place) { click(place); };
    extension_.onEntryChosen = [this](std::uint32_t number) { choose(number); };
    tray_.onTrayChange = [this] { update(); };
}

void ShellStatusItem::setAction(std::function<void()> action) {
    action_ = std::move(action);
    tray_.setAction([this] {
        place_.reset();
        action_();
    });
}

void ShellStatusItem::setImage(const QIcon& image, const std::string& description) {
    item_.picture = pictureOf(image);
    item_.description = QString::fromStdString(description);
    tray_.setImage(image, description);
    update();
}

void ShellStatusItem::setMenu(std::vector<MenuEntry> entries) {
    item_.entries.clear();
    for (const auto& entry : entries) {
        item_.entries.append(shellEntry(entry));
    }
    entries_ = entries;
    tray_.setMenu(std::move(entries));
    update();
}

std::optional<QRect> ShellStatusItem::place() const {
    return place_ ? place_ : tray_.place();
}

void ShellStatusItem::click(const QRect& place) {
    place_ = place;
    if (action_) {
        action_();
    }
}

void ShellStatusItem::choose(std::uint32_t number) const {
    if (number < entries_.size() && entries_[number].action) {
        // A copy, since it may lead to other entries.
        const auto act = entries_[number].action;
        act();
    }
}

void ShellStatusItem::update() {
    extension_.setItem(tray_.mayBeShown() ? std::nullopt : std::optional(item_));
}

} // namespace vantrel
