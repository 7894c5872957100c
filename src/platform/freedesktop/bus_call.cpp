#include "platform/freedesktop/bus_call.h"

#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>

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

bool isOnBus(const QDBusConnection& bus, const QString& name) {
    constexpr int limit = 1000; // milliseconds
    const auto answer =
        bus.call(busCall(QStringLiteral("NameHasOwner"), {name}), QDBus::Block, limit);
    return answer.type() == QDBusMessage::ReplyMessage && answer.arguments().value(0).toBool();
}

void followOwner(const QDBusConnection& bus, const QString& name, QObject* context,
                 const std::function<void(const QString& owner)>& changed) {
    auto* watcher =
        new QDBusServiceWatcher(name, bus, QDBusServiceWatcher::WatchForOwnerChange, context);
    QObject::connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, context,
                     [changed](const QString& /*name*/, const QString& /*former*/,
                               const QString& owner) { changed(owner); });
    callAsync(bus, busCall(QStringLiteral("GetNameOwner"), {name}), context,
              [changed](const QDBusMessage& answer) {
                  const bool isOwned = answer.type() != QDBusMessage::ErrorMessage;
                  changed(isOwned ? answer.arguments().value(0).toString() : QString());
              });
}

} // namespace vantrel
