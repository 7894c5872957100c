#include "platform/freedesktop/login_manager.h"

#include "platform/freedesktop/bus_call.h"
#include "platform/freedesktop/bus_probe.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <utility>

namespace vantrel {
namespace {

constexpr QLatin1String connectionName("vantrel-login-manager");
constexpr QLatin1String managerService("org.freedesktop.login1");
constexpr QLatin1String managerPath("/org/freedesktop/login1");
constexpr QLatin1String managerInterface("org.freedesktop.login1.Manager");

QDBusConnection bus() {
    return QDBusConnection(connectionName);
}

} // namespace

LoginManager::LoginManager(std::chrono::milliseconds retryInterval)
    : retryInterval_(retryInterval) {
    connect_.setSingleShot(true);
    connect_.setTimerType(Qt::VeryCoarseTimer);
    connect(&connect_, &QTimer::timeout, this,
            [this] { askSystemBus(this, [this](bool answers) { reachBus(answers); }); });
    connect_.start(0);
}

LoginManager::~LoginManager() {
    QDBusConnection::disconnectFromBus(connectionName);
}

Subscription LoginManager::onWillSleep(std::function<void()> callback) {
    return willSleep_.add(std::move(callback));
}

Subscription LoginManager::onDidWake(std::function<void()> callback) {
    return didWake_.add(std::move(callback));
}

Subscription LoginManager::onWillShutDown(std::function<void()> callback) {
    return willShutDown_.add(std::move(callback));
}

void LoginManager::prepareForSleep(bool going) {
    if (std::exchange(sleep_.isGoing, going) == going) {
        return;
    }
    if (going) {
        willSleep_.notify();
        sleep_.descriptor = {};
    } else {
        take(sleep_);
        didWake_.notify();
    }
}

void LoginManager::prepareForShutdown(bool going) {
    if (std::exchange(shutdown_.isGoing, going) == going) {
        return;
    }
    if (going) {
        willShutDown_.notify();
        shutdown_.descriptor = {};
    } else {
        take(shutdown_);
    }
}

void LoginManager::loseBus() {
    onBus_.reset();
    QDBusConnection::disconnectFromBus(connectionName);
    setOwner({});
    connect_.start(retryInterval_);
}

void LoginManager::reachBus(bool answers) {
    if (!answers ||
        !QDBusConnection::connectToBus(QDBusConnection::SystemBus, connectionName).isConnected()) {
        loseBus();
        return;
    }
    auto connection = bus();
    connection.connect({}, localPath, localInterface, QStringLiteral("Disconnected"), this,
                       SLOT(loseBus()));
    onBus_.emplace();
    followOwner(connection, managerService, &*onBus_,
                [this](const QString& owner) { setOwner(owner); });
}

// Signals are connected from the unique name: a well-known one would be looked up, and waited for.
void LoginManager::setOwner(const QString& owner) {
    if (owner == owner_) {
        return;
    }
    const auto sleep = QStringLiteral("PrepareForSleep");
    const auto shutdown = QStringLiteral("PrepareForShutdown");
    if (!owner_.isEmpty()) {
        bus().disconnect(owner_, managerPath, managerInterface, sleep, this,
                         SLOT(prepareForSleep(bool)));
        bus().disconnect(owner_, managerPath, managerInterface, shutdown, this,
                         SLOT(prepareForShutdown(bool)));
    }
    owner_ = owner;
    if (!owner_.isEmpty()) {
        bus().connect(owner_, managerPath, managerInterface, sleep, this,
                      SLOT(prepareForSleep(bool)));
        bus().connect(owner_, managerPath, managerInterface, shutdown, this,
                      SLOT(prepareForShutdown(bool)));
    }
    shutdown_.isGoing = false;
    take(shutdown_);
    sleep_.isGoing ? prepareForSleep(false) : take(sleep_);
}

void LoginManager::take(DelayLock& lock) {
    lock.descriptor = {};
    if (owner_.isEmpty()) {
        return;
    }
    auto message = QDBusMessage::createMethodCall(owner_, managerPath, managerInterface,
                                                  QStringLiteral("Inhibit"));
    message << lock.what << QStringLiteral("Vantrel") << QStringLiteral("Saves its preferences")
            << QStringLiteral("delay");
    callAsync(bus(), message, this, [this, &lock, owner = owner_](const QDBusMessage& answer) {
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply(answer);
        if (reply.isValid() && owner == owner_ && !lock.isGoing) {
            lock.descriptor = reply.value();
        }
    });
}

} // namespace vantrel
