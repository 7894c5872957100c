#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>

// What somebody does in ten hours of lessons, and how fast it is done here.

namespace vantrel::bench::day {

inline constexpr int parts = 10; // each as long and as full as the others
inline constexpr int motions = 100'000;
inline constexpr int clicks = 5'000;
inline constexpr int modeChanges = 500;
inline constexpr int openings = 200; // of the panel, or of the settings
inline constexpr int displayChanges = 50;
inline constexpr int locks = 20;
inline constexpr int sleeps = 20;
inline constexpr double motionsPerSecond = 2000;
inline constexpr double clicksPerSecond = 100;
inline constexpr double modeChangesPerSecond = 20;

// Tells of sleep, and holds nothing up.
class LoginManager {
public:
    // The address of a system bus.
    explicit LoginManager(const std::string& bus)
        : bus_(
              QDBusConnection::connectToBus(QString::fromStdString(bus), QStringLiteral("login"))) {
        bus_.registerService(QStringLiteral("org.freedesktop.login1"));
    }
    ~LoginManager() { QDBusConnection::disconnectFromBus(QStringLiteral("login")); }
    LoginManager(const LoginManager&) = delete;
    LoginManager& operator=(const LoginManager&) = delete;

    void announceSleep(bool going) const {
        auto signal = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/login1"),
                                                 QStringLiteral("org.freedesktop.login1.Manager"),
                                                 QStringLiteral("PrepareForSleep"));
        signal << going;
        bus_.send(signal);
    }

private:
    QDBusConnection bus_;
};

} // namespace vantrel::bench::day
