#pragma once

#include "platform/freedesktop/unique_descriptor.h"
#include "support/freedesktop_support.h"
#include "testdesk/private_bus.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>

#include <array>
#include <map>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace vantrel {

// libdbus reads the address of the system bus once in a process, so every private bus of a process
// is at the same one.
inline std::filesystem::path privateBusSocket() {
    static const TemporaryFolder folder;
    return folder / "bus";
}
inline QString privateBusAddress() {
    return QStringLiteral("unix:path=") + QString::fromStdString(privateBusSocket());
}

// A login manager of a test, on a connection of its own to the private bus.
class MockLoginManager : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")

public:
    MockLoginManager() {
        bus_.registerObject(path_, this, QDBusConnection::ExportAllSlots);
        EXPECT_TRUE(bus_.registerService(QStringLiteral("org.freedesktop.login1")));
    }
    ~MockLoginManager() override { QDBusConnection::disconnectFromBus(name_); }
    Q_DISABLE_COPY_MOVE(MockLoginManager)

    // PrepareForSleep or PrepareForShutdown.
    void announce(const char* signal, bool going) {
        auto message = QDBusMessage::createSignal(
            path_, QStringLiteral("org.freedesktop.login1.Manager"), QString::fromLatin1(signal));
        message << going;
        bus_.send(message);
    }
    // The delay locks of one kind that somebody holds.
    [[nodiscard]] int sleepLocks() const { return held(QStringLiteral("sleep")); }
    [[nodiscard]] int shutdownLocks() const { return held(QStringLiteral("shutdown")); }

    Q_SLOT QDBusUnixFileDescriptor Inhibit(const QString& what, const QString& who,
                                           const QString& why, const QString& mode) {
        EXPECT_FALSE(who.isEmpty() || why.isEmpty());
        EXPECT_EQ(mode, QStringLiteral("delay"));
        std::array<int, 2> ends{-1, -1};
        EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
        locks_.emplace(what, UniqueDescriptor(ends[0]));
        return QDBusUnixFileDescriptor(UniqueDescriptor(ends[1]).get());
    }

private:
    [[nodiscard]] int held(const QString& what) const {
        int count = 0;
        for (auto [at, end] = locks_.equal_range(what); at != end; ++at) {
            pollfd lock{at->second.get(), POLLIN, 0};
            poll(&lock, 1, 0);
            count += (lock.revents & POLLHUP) == 0 ? 1 : 0;
        }
        return count;
    }

    const QString name_ = QStringLiteral("mock-login-manager");
    const QString path_ = QStringLiteral("/org/freedesktop/login1");
    QDBusConnection bus_ = QDBusConnection::connectToBus(privateBusAddress(), name_);
    std::multimap<QString, UniqueDescriptor> locks_; // the far end of a pipe for each
};

} // namespace vantrel
