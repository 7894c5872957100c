#include "platform/freedesktop/portal_shortcuts.h"

#include "platform/freedesktop/bus_call.h"
#include "platform/freedesktop/portal.h"
#include "platform/input.h"

#include <QDBusMetaType>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

using portal::path;
using portal::service;
const auto interface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");

const auto sessionInterface = QStringLiteral("org.freedesktop.portal.Session");

QString idOf(std::uint32_t number) {
    return QStringLiteral("shortcut-%1").arg(number);
}

// In the words of the shortcuts specification.
QString triggerOf(const std::string& symbol, std::uint32_t modifiers) {
    QString trigger;
    for (const auto& [bit, name] :
         {std::pair{modifier::control, "CTRL+"}, std::pair{modifier::option, "ALT+"},
          std::pair{modifier::shift, "SHIFT+"}, std::pair{modifier::command, "LOGO+"}}) {
        if ((modifiers & bit) != 0) {
            trigger += QLatin1String(name);
        }
    }
    return trigger + QString::fromStdString(symbol);
}

} // namespace

PortalShortcuts::PortalShortcuts(QDBusConnection bus, Means means)
    : bus_(std::move(bus)), means_(std::move(means)) {
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
    // Their senders are compared with the owner of the name, which the toolkit would wait for.
    bus_.connect({}, {}, QStringLiteral("org.freedesktop.portal.Request"),
                 QStringLiteral("Response"), this, SLOT(respond(uint, QVariantMap, QDBusMessage)));
    bus_.connect({}, path, interface, QStringLiteral("Activated"), this,
                 SLOT(activate(QDBusObjectPath, QString, qulonglong, QVariantMap, QDBusMessage)));
    bus_.connect({}, {}, sessionInterface, QStringLiteral("Closed"), this,
                 SLOT(lose(QDBusMessage)));
    // Nobody else may have started it in this session yet.
    callAsync(bus_, busCall(QStringLiteral("StartServiceByName"), {service, 0U}), this,
              [](const QDBusMessage&) {});
    followOwner(bus_, service, this, [this](const QString& owner) {
        if (owner == owner_) {
            return;
        }
        owner_ = owner;
        step_ = Step::none;
        note(false);
        if (!owner.isEmpty()) {
            ask();
        }
    });
}

void PortalShortcuts::ask() {
    const auto question = callOf(owner_, path, QStringLiteral("org.freedesktop.DBus.Properties"),
                                 QStringLiteral("Get"), {interface, QStringLiteral("version")});
    callAsync(bus_, question, this, [this, asked = owner_](const QDBusMessage& answer) {
        if (answer.type() != QDBusMessage::ErrorMessage && asked == owner_) {
            note(true);
        }
    });
}

void PortalShortcuts::note(bool isThere) {
    if (std::exchange(isThere_, isThere) != isThere) {
        changes_.notify();
    }
}

void PortalShortcuts::grab(const std::vector<KeyGrab>& grabs) {
    if (grabs == grabs_ && step_ != Step::none) {
        return; // spares the user a question
    }
    close();
    grabs_ = grabs;
    if (isThere_ && !grabs_.empty()) {
        step_ = Step::opening;
        request("CreateSession", {}, {{QStringLiteral("session_handle_token"), token()}});
    }
}

void PortalShortcuts::close() {
    if (std::exchange(step_, Step::none) != Step::none) {
        callAsync(bus_,
                  callOf(owner_, pathOf("session"), sessionInterface, QStringLiteral("Close")),
                  this, [](const QDBusMessage&) {});
    }
    // What the user answers to it from here on is about nothing.
    ++session_;
}

void PortalShortcuts::request(const char* method, const QVariantList& arguments,
                              QVariantMap options) {
    options[QStringLiteral("handle_token")] = token();
    callAsync(bus_,
              callOf(owner_, path, interface, QString::fromLatin1(method),
                     arguments + QVariantList{options}),
              this, [this, session = session_](const QDBusMessage& answer) {
                  if (answer.type() == QDBusMessage::ErrorMessage && session == session_) {
                      judge({});
                  }
              });
}

void PortalShortcuts::respond(uint response, const QVariantMap& results,
                              const QDBusMessage& message) {
    if (message.service() != owner_ || message.path() != pathOf("request")) {
        return;
    }
    if (response == 0 && step_ == Step::opening) {
        bind();
    } else {
        judge(response == 0 ? results : QVariantMap());
    }
}

void PortalShortcuts::bind() {
    step_ = Step::binding;
    QList<PortalShortcut> shortcuts;
    for (const auto& [number, keys] : grabs_) {
        shortcuts.push_back({idOf(number),
                             {{QStringLiteral("description"), means_.nameOf(number)},
                              {QStringLiteral("preferred_trigger"),
                               triggerOf(means_.symbolOf(keys.keycode), keys.modifiers)}}});
    }
    request("BindShortcuts",
            {QVariant::fromValue(QDBusObjectPath(pathOf("session"))),
             QVariant::fromValue(shortcuts), QString()},
            {});
}

void PortalShortcuts::judge(const QVariantMap& results) {
    step_ = Step::bound;
    const auto shortcuts =
        qdbus_cast<QList<PortalShortcut>>(results.value(QStringLiteral("shortcuts")));
    std::vector<std::uint32_t> refused;
    for (const auto& grab : grabs_) {
        const auto granted = std::ranges::find(shortcuts, idOf(grab.number), &PortalShortcut::id);
        const auto trigger = QStringLiteral("trigger_description");
        if (granted == shortcuts.end() || granted->properties.value(trigger).toString().isEmpty()) {
            refused.push_back(grab.number);
        }
    }
    if (!shortcuts.isEmpty() && refused.size() == grabs_.size()) {
        note(false);
    } else if (!refused.empty() && onRefused) {
        onRefused(refused);
    }
}

void PortalShortcuts::activate(const QDBusObjectPath& session, const QString& shortcut,
                               qulonglong /*timestamp*/, const QVariantMap& /*options*/,
                               const QDBusMessage& message) {
    if (message.service() != owner_ || session.path() != pathOf("session") || !onPressed) {
        return;
    }
    const auto pressed =
        std::ranges::find(grabs_, shortcut, [](const KeyGrab& grab) { return idOf(grab.number); });
    if (pressed != grabs_.end()) {
        onPressed(pressed->number);
    }
}

// The desktop takes the keys back.
void PortalShortcuts::lose(const QDBusMessage& message) {
    if (message.service() == owner_ && message.path() == pathOf("session") &&
        step_ == Step::bound) {
        judge({});
        step_ = Step::none;
    }
}

QString PortalShortcuts::token() const {
    return QStringLiteral("vantrel%1").arg(session_);
}

// As the portal makes them up of the token.
QString PortalShortcuts::pathOf(const char* kind) const {
    auto caller = bus_.baseService().mid(1);
    caller.replace(QLatin1Char('.'), QLatin1Char('_'));
    return QStringLiteral("%1/%2/%3/%4").arg(path, QLatin1String(kind), caller, token());
}

} // namespace vantrel
