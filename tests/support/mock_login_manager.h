#pragma once

#include "platform/freedesktop/unique_descriptor.h"
#include "testdesk/private_bus.h"

#include <QDBusConnection>
#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QString>

#include <filesystem>
#include <map>

namespace vantrel {

// libdbus reads the address of the system bus once in a process, so every private bus of a process
// is at the same one.
[[nodiscard]] std::filesystem::path privateBusSocket();
[[nodiscard]] QString privateBusAddress();

// A login manager of a test, on a connection of its own to the private bus.
class MockLoginManager : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")

public:
    MockLoginManager();
    ~MockLoginManager() override;
    Q_DISABLE_COPY_MOVE(MockLoginManager)

    // PrepareForSleep or PrepareForShutdown.
    void announce(const char* signal, bool going);
    // The delay locks of one kind that somebody holds.
    [[nodiscard]] int sleepLocks() const { return held(QStringLiteral("sleep")); }
    [[nodiscard]] int shutdownLocks() const { return held(QStringLiteral("shutdown")); }

    Q_SLOT QDBusUnixFileDescriptor Inhibit(const QString& what, const QString& who,
                                           const QString& why, const QString& mode);

private:
    [[nodiscard]] int held(const QString& what) const;

    const QString name_ = QStringLiteral("mock-login-manager");
    const QString path_ = QStringLiteral("/org/freedesktop/login1");
    QDBusConnection bus_ = QDBusConnection::connectToBus(privateBusAddress(), name_);
    std::multimap<QString, UniqueDescriptor> locks_; // the far end of a pipe for each
};

} // namespace vantrel
