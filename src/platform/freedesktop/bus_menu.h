#pragma once

#include "platform/freedesktop/bus_structure.h"
#include "platform/shell.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusVariant>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <vector>

namespace vantrel {

// What the bus is told of an entry: (ia{sv}), and (ia{sv}av) with the entries below it.
struct BusMenuProperties {
    int id = 0;
    QVariantMap values{};

    static auto members(auto& self) { return std::tie(self.id, self.values); }
};
struct BusMenuLayout {
    BusMenuProperties entry;
    QVariantList below{};

    static auto members(auto& self) {
        return std::tie(self.entry.id, self.entry.values, self.below);
    }
};
// The names of what an entry no longer has: (ias).
struct BusMenuRemovals {
    int id = 0;
    QStringList names{};

    static auto members(auto& self) { return std::tie(self.id, self.names); }
};
// What happened to an entry: (isvu).
struct BusMenuEvent {
    int id = 0;
    QString name;
    QDBusVariant data;
    uint time = 0;

    static auto members(auto& self) { return std::tie(self.id, self.name, self.data, self.time); }
};

// The interface com.canonical.dbusmenu, by which panels show the menus of other programs. The
// names are those on the bus. All entries lie below the one of the number 0, and have the numbers
// from 1.
class BusMenu final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(QString TextDirection READ textDirection)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath)

public:
    explicit BusMenu(QObject* object);

    // A menu of the same shape is changed in place: it may be open.
    void setEntries(std::vector<MenuEntry> entries);

    [[nodiscard]] uint version() const { return 3; }
    [[nodiscard]] QString status() const { return QStringLiteral("normal"); }
    [[nodiscard]] QString textDirection() const { return QStringLiteral("ltr"); }
    [[nodiscard]] QStringList iconThemePath() const { return {}; }

    // The layout comes back beside the revision. All properties are told, whatever is asked for.
    Q_SLOT uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                          vantrel::BusMenuLayout& layout);
    Q_SLOT QList<vantrel::BusMenuProperties> GetGroupProperties(const QList<int>& ids,
                                                                const QStringList& propertyNames);
    Q_SLOT QDBusVariant GetProperty(int id, const QString& name);
    Q_SLOT void Event(int id, const QString& name, const QDBusVariant& data, uint time);
    Q_SLOT QList<int> EventGroup(const QList<vantrel::BusMenuEvent>& events);
    Q_SLOT bool AboutToShow(int /*id*/) { return false; }
    Q_SLOT QList<int> AboutToShowGroup(const QList<int>& /*ids*/, QList<int>& errors);

    Q_SIGNAL void ItemsPropertiesUpdated(const QList<vantrel::BusMenuProperties>& updated,
                                         const QList<vantrel::BusMenuRemovals>& removed);
    Q_SIGNAL void LayoutUpdated(uint revision, int parent);
    Q_SIGNAL void ItemActivationRequested(int id, uint time);

private:
    [[nodiscard]] bool has(int id) const;
    [[nodiscard]] QVariantMap valuesOf(int id) const;

    std::vector<MenuEntry> entries_;
    uint revision_ = 1;
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::BusMenuProperties)
Q_DECLARE_METATYPE(vantrel::BusMenuLayout)
Q_DECLARE_METATYPE(vantrel::BusMenuRemovals)
Q_DECLARE_METATYPE(vantrel::BusMenuEvent)
