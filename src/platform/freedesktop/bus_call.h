#pragma once

#include <QDBusMessage>
#include <QLatin1String>

namespace vantrel {

// The bus itself, which answers as a program on it does.
inline constexpr QLatin1String busService("org.freedesktop.DBus");
inline constexpr QLatin1String busPath("/org/freedesktop/DBus");

[[nodiscard]] inline QDBusMessage busCall(const QString& method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(busService, busPath, busService, method);
    message.setArguments(arguments);
    return message;
}

} // namespace vantrel
