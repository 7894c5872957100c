#include "platform/freedesktop/bus_menu.h"

#include <QDBusMetaType>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

bool sameKind(const MenuEntry& a, const MenuEntry& b) {
    return a.title.empty() == b.title.empty() && a.checked.has_value() == b.checked.has_value();
}

// A letter behind a low line would choose the entry.
QString labelOf(const MenuEntry& entry) {
    return QString::fromStdString(entry.title).replace(QLatin1Char('_'), QLatin1String("__"));
}

QVariant shortcutOf(const MenuEntry& entry) {
    auto keys = QString::fromStdString(entry.shortcut).split(QLatin1Char('+'));
    keys.replaceInStrings(QStringLiteral("Ctrl"), QStringLiteral("Control"));
    return QVariant::fromValue(QList<QStringList>{keys});
}

QVariantMap valuesFor(const MenuEntry& entry) {
    if (entry.title.empty()) {
        return {{QStringLiteral("type"), QStringLiteral("separator")}};
    }
    QVariantMap values{{QStringLiteral("label"), labelOf(entry)}};
    if (entry.checked) {
        values.insert(QStringLiteral("toggle-type"), QStringLiteral("radio"));
        values.insert(QStringLiteral("toggle-state"), *entry.checked ? 1 : 0);
    }
    if (!entry.shortcut.empty()) {
        values.insert(QStringLiteral("shortcut"), shortcutOf(entry));
    }
    return values;
}

} // namespace

BusMenu::BusMenu(QObject* object) : QDBusAbstractAdaptor(object) {
    qDBusRegisterMetaType<BusMenuProperties>();
    qDBusRegisterMetaType<QList<BusMenuProperties>>();
    qDBusRegisterMetaType<BusMenuLayout>();
    qDBusRegisterMetaType<BusMenuRemovals>();
    qDBusRegisterMetaType<QList<BusMenuRemovals>>();
    qDBusRegisterMetaType<BusMenuEvent>();
    qDBusRegisterMetaType<QList<BusMenuEvent>>();
    qDBusRegisterMetaType<QList<QStringList>>();
}

void BusMenu::setEntries(std::vector<MenuEntry> entries) {
    const auto before = std::exchange(entries_, std::move(entries));
    if (!std::ranges::equal(before, entries_, sameKind)) {
        Q_EMIT LayoutUpdated(++revision_, 0);
        return;
    }
    QList<BusMenuProperties> updated;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (!entries_[i].looksLike(before[i])) {
            updated.append({static_cast<int>(i) + 1, valuesFor(entries_[i])});
        }
    }
    if (!updated.isEmpty()) {
        Q_EMIT ItemsPropertiesUpdated(updated, {});
    }
}

bool BusMenu::has(int id) const {
    return id > 0 && static_cast<std::size_t>(id) <= entries_.size();
}

QVariantMap BusMenu::valuesOf(int id) const {
    if (id == 0) {
        return {{QStringLiteral("children-display"), QStringLiteral("submenu")}};
    }
    return has(id) ? valuesFor(entries_[static_cast<std::size_t>(id) - 1]) : QVariantMap();
}

uint BusMenu::GetLayout(int parentId, int recursionDepth, const QStringList& /*propertyNames*/,
                        BusMenuLayout& layout) {
    layout = {.entry = {parentId, valuesOf(parentId)}};
    if (parentId == 0 && recursionDepth != 0) {
        for (int id = 1; has(id); ++id) {
            layout.below.append(QVariant::fromValue(BusMenuLayout{.entry = {id, valuesOf(id)}}));
        }
    }
    return revision_;
}

QList<BusMenuProperties> BusMenu::GetGroupProperties(const QList<int>& ids,
                                                     const QStringList& /*propertyNames*/) {
    QList<BusMenuProperties> properties;
    for (int id = 0; id == 0 || has(id); ++id) {
        if (ids.isEmpty() || ids.contains(id)) {
            properties.append({id, valuesOf(id)});
        }
    }
    return properties;
}

QDBusVariant BusMenu::GetProperty(int id, const QString& name) {
    return QDBusVariant(valuesOf(id).value(name, QString()));
}

void BusMenu::Event(int id, const QString& name, const QDBusVariant& /*data*/, uint /*time*/) {
    if (name == QLatin1String("clicked") && has(id)) {
        // A copy, as it may lead to other entries.
        if (const auto action = entries_[static_cast<std::size_t>(id) - 1].action) {
            action();
        }
    }
}

QList<int> BusMenu::EventGroup(const QList<BusMenuEvent>& events) {
    QList<int> unknown;
    for (const auto& [id, name, data, time] : events) {
        if (id != 0 && !has(id)) {
            unknown.append(id);
        }
        Event(id, name, data, time);
    }
    return unknown;
}

QList<int> BusMenu::AboutToShowGroup(const QList<int>& /*ids*/, QList<int>& errors) {
    errors.clear();
    return {};
}

} // namespace vantrel
