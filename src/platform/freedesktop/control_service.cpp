#include "platform/freedesktop/control_service.h"

#include "platform/freedesktop/bus_call.h"

#include <QDBusConnection>
#include <QDBusPendingCall>

#include <utility>

namespace vantrel {

namespace {

constexpr QLatin1String serviceName("org.vantrel.Vantrel");
constexpr QLatin1String objectPath("/org/vantrel/Vantrel");
constexpr QLatin1String interfaceName("org.vantrel.Vantrel1");
constexpr QLatin1String modeProperty("Mode");

void refuse(const QDBusMessage& message, const QString& mode) {
    message.setDelayedReply(true);
    QDBusConnection::sessionBus().send(message.createErrorReply(
        QDBusError::InvalidArgs, QStringLiteral("there is no mode \"%1\" here").arg(mode)));
}

} // namespace

ControlAdaptor::ControlAdaptor(QObject* service, RemoteControl control)
    : QDBusAbstractAdaptor(service), control_(std::move(control)) {}

QString ControlAdaptor::mode() const {
    return QString::fromStdString(control_.status().mode);
}

bool ControlAdaptor::clickAvailable() const {
    return control_.status().clickAvailable;
}

QString ControlAdaptor::hotkeyError() const {
    return QString::fromStdString(control_.status().hotkeyError.value_or(""));
}

QString ControlAdaptor::version() const {
    return QString::fromStdString(control_.status().version);
}

QVariantMap ControlAdaptor::changingProperties() const {
    const auto status = control_.status();
    return {
        {modeProperty, QString::fromStdString(status.mode)},
        {QStringLiteral("ClickAvailable"), status.clickAvailable},
        {QStringLiteral("HotkeyError"), QString::fromStdString(status.hotkeyError.value_or(""))}};
}

void ControlAdaptor::SetMode(const QString& mode, const QDBusMessage& message) {
    if (!control_.setMode(mode.toStdString())) {
        refuse(message, mode);
    }
}

void ControlAdaptor::Toggle(const QString& mode, const QDBusMessage& message) {
    if (!control_.toggle(mode.toStdString())) {
        refuse(message, mode);
    }
}

void ControlAdaptor::ShowSettings() {
    control_.openSettings();
}

void ControlAdaptor::Quit() {
    control_.quit();
}

ControlService::ControlService(RemoteControl control)
    : adaptor_(new ControlAdaptor(this, std::move(control))),
      announced_(adaptor_->changingProperties()) {
    auto bus = QDBusConnection::sessionBus();
    if (bus.isConnected() && bus.registerObject(objectPath, this)) {
        // Nobody waits for the answer; the bus calls a queued one up when its turn comes.
        bus.asyncCall(busCall(QStringLiteral("RequestName"), {QString(serviceName), 0U}));
    }
}

ControlService::~ControlService() {
    QDBusConnection::sessionBus().unregisterObject(objectPath);
}

void ControlService::announce() {
    if (!std::exchange(pending_, true)) {
        QMetaObject::invokeMethod(
            this, [this] { announceNow(); }, Qt::QueuedConnection);
    }
}

void ControlService::announceNow() {
    pending_ = false;
    const auto now = adaptor_->changingProperties();
    QVariantMap changes;
    for (auto property = now.cbegin(); property != now.cend(); ++property) {
        if (announced_.value(property.key()) != property.value()) {
            changes.insert(property.key(), property.value());
        }
    }
    announced_ = now;
    if (changes.isEmpty()) {
        return;
    }
    if (changes.contains(modeProperty)) {
        Q_EMIT adaptor_->ModeChanged(changes[modeProperty].toString());
    }
    auto message =
        QDBusMessage::createSignal(objectPath, QStringLiteral("org.freedesktop.DBus.Properties"),
                                   QStringLiteral("PropertiesChanged"));
    message << QString(interfaceName) << changes << QStringList();
    QDBusConnection::sessionBus().send(message);
}

} // namespace vantrel
