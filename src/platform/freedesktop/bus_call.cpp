#include "platform/freedesktop/bus_call.h"

#include <QDBusPendingCallWatcher>

#include <utility>

namespace vantrel {

QDBusMessage callOf(const QString& service, const QString& path, const QString& interface,
                    const QString& method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    return message;
}

QDBusMessage busCall(const QString& method, const QVariantList& arguments) {
    return callOf(busService, busPath, busService, method, arguments);
}

void callAsync(const QDBusConnection& bus, const QDBusMessage& message, QObject* context,
               std::function<void(const QDBusMessage& answer)> answered) {
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(message), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [watcher, answered = std::move(answered)] {
                         watcher->deleteLater();
                         answered(watcher->reply());
                     });
}

} // namespace vantrel
