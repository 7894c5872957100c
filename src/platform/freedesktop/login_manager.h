#pragma once

#include "platform/subscription.h"

#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QString>
#include <QTimer>
#include <chrono>
#include <optional>

namespace vantrel {

// The login manager of the system bus: says when the machine is about to sleep or to go down, and
// waits a little while this program holds a delay lock. The lock is let go after every callback has
// returned and taken again when the machine is awake.
//
// Nothing here waits for an answer, and nothing depends on one: the bus is reached from the event
// loop, and a bus or a login manager that is missing, hangs, appears later, or restarts is picked
// up when it is there. If it goes while the machine is thought to sleep, the machine counts as
// awake.
class LoginManager final : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds usualRetryInterval{30'000};

    // The interval at which a missing bus is tried again.
    explicit LoginManager(std::chrono::milliseconds retryInterval = usualRetryInterval);
    ~LoginManager() override;
    Q_DISABLE_COPY_MOVE(LoginManager)

    [[nodiscard]] Subscription onWillSleep(std::function<void()> callback);
    [[nodiscard]] Subscription onDidWake(std::function<void()> callback);
    [[nodiscard]] Subscription onWillShutDown(std::function<void()> callback);

private:
    Q_SLOT void prepareForSleep(bool going);
    Q_SLOT void prepareForShutdown(bool going);
    Q_SLOT void loseBus();

    struct DelayLock {
        QString what;
        bool isGoing = false; // between the announcement and its end, when no lock is wanted
        QDBusUnixFileDescriptor descriptor;
    };

    void reachBus(bool answers);
    void setOwner(const QString& owner);
    void take(DelayLock& lock);

    std::optional<QObject> onBus_; // while there is one
    QString owner_;                // the unique name of the login manager; empty when there is none
    DelayLock sleep_{QStringLiteral("sleep"), false, {}};
    DelayLock shutdown_{QStringLiteral("shutdown"), false, {}};
    Observers<> willSleep_;
    Observers<> didWake_;
    Observers<> willShutDown_;
    QTimer connect_;
    std::chrono::milliseconds retryInterval_;
};

} // namespace vantrel
