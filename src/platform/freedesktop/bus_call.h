#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QLatin1String>

#include <functional>

class QObject;

namespace vantrel {

// The bus itself, which answers as a program on it does.
inline constexpr QLatin1String busService("org.freedesktop.DBus");
inline constexpr QLatin1String busPath("/org/freedesktop/DBus");
// What the toolkit says of the connection, as if the bus had.
inline constexpr QLatin1String localPath("/org/freedesktop/DBus/Local");
inline constexpr QLatin1String localInterface("org.freedesktop.DBus.Local");

// A call for which nobody is started.
[[nodiscard]] QDBusMessage callOf(const QString& service, const QString& path,
                                  const QString& interface, const QString& method,
                                  const QVariantList& arguments = {});
[[nodiscard]] QDBusMessage busCall(const QString& method, const QVariantList& arguments);

// Waits for nothing: the answer, or an error in its place, comes in a later turn of the event loop,
// and no more once the context is gone.
void callAsync(const QDBusConnection& bus, const QDBusMessage& message, QObject* context,
               std::function<void(const QDBusMessage& answer)> answered);

// Whether anybody has that name now. Waits for the answer of the bus, which needs nobody else.
[[nodiscard]] bool isOnBus(const QDBusConnection& bus, const QString& name);

// Tells who owns a name, by the unique name, and nothing for nobody: soon, and at each change as
// long as the context lives.
void followOwner(const QDBusConnection& bus, const QString& name, QObject* context,
                 const std::function<void(const QString& owner)>& changed);

} // namespace vantrel
