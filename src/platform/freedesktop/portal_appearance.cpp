#include "platform/freedesktop/portal_appearance.h"

#include "platform/freedesktop/bus_call.h"
#include "platform/freedesktop/portal.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QVariantMap>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

using portal::path;
using portal::service;
const auto interface = QStringLiteral("org.freedesktop.portal.Settings");
const auto anyDesktop = QStringLiteral("org.freedesktop.appearance");
const auto gnome = QStringLiteral("org.gnome.desktop.interface");

} // namespace

PortalAppearance::PortalAppearance(QDBusConnection bus,
                                   std::function<void(const Appearance&)> changed)
    : bus_(std::move(bus)), changed_(std::move(changed)) {
    // Its sender is compared with the owner of the name, which the toolkit would wait for.
    bus_.connect({}, path, interface, QStringLiteral("SettingChanged"), this,
                 SLOT(note(QDBusMessage)));
    followOwner(bus_, service, this, [this](const QString& owner) {
        if (std::exchange(owner_, owner) != owner && !owner.isEmpty()) {
            ask();
        }
    });
}

void PortalAppearance::ask() {
    const auto question = callOf(owner_, path, interface, QStringLiteral("ReadAll"),
                                 {QStringList{anyDesktop, gnome}});
    callAsync(bus_, question, this, [this](const QDBusMessage& answer) {
        if (answer.signature() != QLatin1String("a{sa{sv}}")) {
            return; // one that has no settings to tell
        }
        const auto groups = qdbus_cast<QMap<QString, QVariantMap>>(answer.arguments().constFirst());
        bool counts = false;
        for (const auto& [group, values] : groups.asKeyValueRange()) {
            for (const auto& [key, value] : values.asKeyValueRange()) {
                counts = take(group, key, value) || counts;
            }
        }
        if (counts) {
            changed_(appearance_);
        }
    });
}

void PortalAppearance::note(const QDBusMessage& message) {
    if (message.service() != owner_ || message.signature() != QLatin1String("ssv")) {
        return;
    }
    const auto& words = message.arguments();
    if (take(words[0].toString(), words[1].toString(), words[2].value<QDBusVariant>().variant())) {
        changed_(appearance_);
    }
}

bool PortalAppearance::take(const QString& group, const QString& key, const QVariant& value) {
    constexpr uint preferDark = 1;
    if (group == anyDesktop && key == QLatin1String("color-scheme")) {
        appearance_.dark = value.toUInt() == preferDark;
        return true;
    }
    if (group == gnome && key == QLatin1String("text-scaling-factor")) {
        const double factor = value.toDouble();
        appearance_.textScale = factor > 0 ? std::clamp(factor, 0.5, 3.0) : 1; // as in GNOME
        return true;
    }
    return false;
}

} // namespace vantrel
