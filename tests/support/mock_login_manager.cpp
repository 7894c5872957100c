#include "support/mock_login_manager.h"

#include "support/freedesktop_support.h"

#include <gtest/gtest.h>

#include <QDBusMessage>

#include <array>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace vantrel {

std::filesystem::path privateBusSocket() {
    static const TemporaryFolder folder;
    return folder / "bus";
}

QString privateBusAddress() {
    return QStringLiteral("unix:path=") + QString::fromStdString(privateBusSocket());
}

int MockLoginManager::held(const QString& what) const {
    int count = 0;
    for (auto [at, end] = locks_.equal_range(what); at != end; ++at) {
        pollfd lock{at->second.get(), POLLIN, 0};
        poll(&lock, 1, 0);
        count += (lock.revents & POLLHUP) == 0 ? 1 : 0;
    }
    return count;
}

MockLoginManager::MockLoginManager() {
    bus_.registerObject(path_, this, QDBusConnection::ExportAllSlots);
    EXPECT_TRUE(bus_.registerService(QStringLiteral("org.freedesktop.login1")));
}

MockLoginManager::~MockLoginManager() {
    QDBusConnection::disconnectFromBus(name_);
}

void MockLoginManager::announce(const char* signal, bool going) {
    auto message = QDBusMessage::createSignal(
        path_, QStringLiteral("org.freedesktop.login1.Manager"), QString::fromLatin1(signal));
    message << going;
    bus_.send(message);
}

QDBusUnixFileDescriptor MockLoginManager::Inhibit(const QString& what, const QString& who,
                                                  const QString& why, const QString& mode) {
    EXPECT_FALSE(who.isEmpty() || why.isEmpty());
    EXPECT_EQ(mode, QStringLiteral("delay"));
    std::array<int, 2> ends{-1, -1};
    EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    locks_.emplace(what, UniqueDescriptor(ends[0]));
    return QDBusUnixFileDescriptor(UniqueDescriptor(ends[1]).get());
}

} // namespace vantrel
