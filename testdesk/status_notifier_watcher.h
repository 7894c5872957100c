#pragma once

#include <QDBusContext>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>

namespace vantrel::desktop {

// What StatusNotifierHost answers programs with.
class StatusNotifierWatcher : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ items)

public:
    [[nodiscard]] QStringList items() const { return items_; }
    [[nodiscard]] bool isHostRegistered() const { return hasHost_; }
    [[nodiscard]] int protocolVersion() const { return 0; }
    // The names of what items and their menus have said.
    [[nodiscard]] QStringList heard() const { return heard_; }

    Q_SLOT void RegisterStatusNotifierItem(const QString& service);
    Q_SLOT void RegisterStatusNotifierHost(const QString& /*service*/);

    Q_SLOT void note(const QDBusMessage& message) { heard_.append(message.member()); }

    Q_SIGNAL void StatusNotifierItemRegistered(const QString& service);
    Q_SIGNAL void StatusNotifierHostRegistered();

private:
    QStringList items_;
    bool hasHost_ = false;
    QStringList heard_;
};

} // namespace vantrel::desktop
