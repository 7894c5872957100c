#include "platform/freedesktop/portal_appearance.h"
#include "platform/freedesktop/portal_shortcuts.h"
#include "platform/input.h"
#include "support/event_loop.h"
#include "support/freedesktop_support.h"
#include "testdesk/private_bus.h"

#include <gtest/gtest.h>

#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QSet>

namespace vantrel {
namespace {

const auto desktopPath = QStringLiteral("/org/freedesktop/portal/desktop");

struct Bus {
    [[nodiscard]] QDBusConnection connect(const char* name) const {
        return QDBusConnection::connectToBus(QString::fromStdString(bus.address()),
                                             QLatin1String(name));
    }

    TemporaryFolder folder;
    desktop::PrivateBus bus{folder / "bus"};
};

// The desktop's side, on a connection of its own.
class FakePortal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.GlobalShortcuts")
    Q_PROPERTY(uint version MEMBER version)

public:
    explicit FakePortal(QDBusConnection connection) : bus(std::move(connection)) {
        bus.registerObject(desktopPath, this,
                           QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties);
        appear();
    }
    void appear() { bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")); }
    void vanish() { bus.unregisterService(QStringLiteral("org.freedesktop.portal.Desktop")); }

    Q_SLOT QDBusObjectPath CreateSession(const QVariantMap& options, const QDBusMessage& call) {
        const auto former =
            std::exchange(session, pathFor("session", call,
                                           options.value(QStringLiteral("session_handle_token"))));
        EXPECT_NE(session, former);
        return respond(call, options, 0, {});
    }
    Q_SLOT QDBusObjectPath BindShortcuts(const QDBusObjectPath& handle,
                                         const QList<vantrel::PortalShortcut>& shortcuts,
                                         const QString& /*window*/, const QVariantMap& options,
                                         const QDBusMessage& call) {
        EXPECT_EQ(handle.path(), session);
        proposals.clear();
        QList<PortalShortcut> granted;
        for (const auto& [id, properties] : shortcuts) {
            const auto said = [&](const char* key) {
                return properties.value(QLatin1String(key)).toString();
            };
            proposals << said("description") + QLatin1Char(' ') + said("preferred_trigger");
            if (!refused.contains(id)) {
                granted.push_back({id, {{QStringLiteral("trigger_description"), trigger}}});
            }
        }
        return respond(call, options, answer,
                       {{QStringLiteral("shortcuts"), QVariant::fromValue(granted)}});
    }
    void press(const QDBusConnection& from, const QString& id) const {
        auto signal = QDBusMessage::createSignal(
            desktopPath, QStringLiteral("org.freedesktop.portal.GlobalShortcuts"),
            QStringLiteral("Activated"));
        signal << QVariant::fromValue(QDBusObjectPath(session)) << id << qulonglong{7}
               << QVariantMap();
        from.send(signal);
    }

    void close(const QDBusConnection& from) const {
        auto signal = QDBusMessage::createSignal(
            session, QStringLiteral("org.freedesktop.portal.Session"), QStringLiteral("Closed"));
        signal << QVariantMap();
        from.send(signal);
    }

    QDBusConnection bus;
    uint version = 2;
    uint answer = 0; // to what the user is asked
    QString trigger = QStringLiteral("some keys");
    QSet<QString> refused;
    QStringList proposals; // as they were last asked for
    QString session;

private:
    static QString pathFor(const char* kind, const QDBusMessage& call, const QVariant& token) {
        auto caller = call.service().mid(1);
        return QStringLiteral("%1/%2/%3/%4")
            .arg(desktopPath, QLatin1String(kind), caller.replace(u'.', u'_'), token.toString());
    }
    // After the call was answered.
    QDBusObjectPath respond(const QDBusMessage& call, const QVariantMap& options, uint response,
                            const QVariantMap& results) {
        const auto path = pathFor("request", call, options.value(QStringLiteral("handle_token")));
        auto signal = QDBusMessage::createSignal(
            path, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"));
        signal << response << results;
        QMetaObject::invokeMethod(
            this, [this, signal] { bus.send(signal); }, Qt::QueuedConnection);
        return QDBusObjectPath(path);
    }
};

using Settings = QMap<QString, QVariantMap>;

class FakeSettings : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    explicit FakeSettings(QDBusConnection connection) : bus(std::move(connection)) {
        bus.registerObject(desktopPath, this, QDBusConnection::ExportAllSlots);
        bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop"));
    }
    Q_SLOT QMap<QString, QVariantMap> ReadAll(const QStringList& /*groups*/) { return settings; }
    static void tell(const QDBusConnection& from, const QString& group, const QString& key,
                     const QVariant& value) {
        auto signal = QDBusMessage::createSignal(desktopPath,
                                                 QStringLiteral("org.freedesktop.portal.Settings"),
                                                 QStringLiteral("SettingChanged"));
        signal << group << key << QVariant::fromValue(QDBusVariant(value));
        from.send(signal);
    }

    QDBusConnection bus;
    Settings settings;
};

TEST(PortalAppearanceTest, TellsOfDarkColoursAndLargeTextsAtTheStartAndLater) {
    qDBusRegisterMetaType<Settings>();
    const Bus bus;
    const auto common = QStringLiteral("org.freedesktop.appearance");
    const auto scheme = QStringLiteral("color-scheme");
    const auto gnome = QStringLiteral("org.gnome.desktop.interface");
    const auto factor = QStringLiteral("text-scaling-factor");
    FakeSettings portal(bus.connect("settings"));
    portal.settings = {{common, {{scheme, 1U}}},
                       {gnome, {{factor, 1.25}, {QStringLiteral("cursor-size"), 24}}}};
    std::vector<std::pair<bool, double>> told;
    const PortalAppearance appearance(bus.connect("window"), [&](const auto& now) {
        told.emplace_back(now.dark, now.textScale);
    });
    EXPECT_TRUE(runUntil([&] { return told == std::vector{std::pair(true, 1.25)}; }));
    // Others have nothing to tell, and the portal also of what does not count.
    portal.tell(bus.connect("stranger"), common, scheme, 0U);
    portal.tell(portal.bus, common, QStringLiteral("contrast"), 1U);
    portal.tell(portal.bus, gnome, factor, 0.0);
    portal.tell(portal.bus, common, scheme, 2U);
    EXPECT_TRUE(runUntil([&] { return told.size() >= 3; }));
    EXPECT_EQ(told,
              (std::vector{std::pair(true, 1.25), std::pair(true, 1.0), std::pair(false, 1.0)}));
}

TEST(PortalShortcutsTest, ProposesTheKeysAndHearsOfThoseThatAreGranted) {
    const Bus bus;
    const auto other = bus.connect("other");
    FakePortal portal(bus.connect("portal"));
    PortalShortcuts shortcuts(
        bus.connect("program"),
        {.symbolOf = [](auto keycode) { return keycode == 43 ? "h" : "F5"; },
         .nameOf = [](auto number) { return QStringLiteral("Name %1").arg(number); }});
    std::vector<std::uint32_t> pressed;
    std::vector<std::uint32_t> refused;
    shortcuts.onPressed = [&](auto number) { pressed.push_back(number); };
    shortcuts.onRefused = [&](const auto& numbers) { refused = numbers; };
    ASSERT_TRUE(runUntil([&] { return shortcuts.takesKeys(); }));

    const KeyGrab first{1, {43, modifier::control | modifier::option}};
    shortcuts.grab({first, {2, {71, modifier::shift | modifier::command}}});
    const QStringList wanted{QStringLiteral("Name 1 CTRL+ALT+h"),
                             QStringLiteral("Name 2 SHIFT+LOGO+F5")};
    EXPECT_TRUE(runUntil([&] { return portal.proposals == wanted; }));
    // One that another program makes up comes first, and does not count.
    portal.press(other, QStringLiteral("shortcut-1"));
    ASSERT_TRUE(other.interface()->isServiceRegistered(other.baseService())); // the bus has it
    ASSERT_TRUE(runUntil([&] {
        portal.press(portal.bus, QStringLiteral("shortcut-2"));
        return !pressed.empty();
    }));
    EXPECT_EQ(pressed.front(), 2U);
    portal.close(portal.bus);
    EXPECT_TRUE(runUntil([&] { return refused == std::vector{1U, 2U}; }));

    portal.refused = {QStringLiteral("shortcut-2")};
    shortcuts.grab({first, {2, {43, modifier::control}}});
    EXPECT_TRUE(runUntil([&] { return refused == std::vector{2U}; }));
    portal.answer = 1; // the user has said no
    shortcuts.grab({first});
    EXPECT_TRUE(runUntil([&] { return refused == std::vector{1U}; }));

    // An answer to what is not wanted any more.
    portal.answer = 0;
    portal.refused.clear();
    portal.proposals.clear();
    shortcuts.grab({{2, first.keys}});
    EXPECT_TRUE(runUntil([&] { return !portal.proposals.isEmpty(); }));
    shortcuts.grab({});
    EXPECT_FALSE(runUntil([&] { return !shortcuts.takesKeys(); }, std::chrono::milliseconds(200)));

    portal.trigger.clear(); // all keys are left to the configuration
    shortcuts.grab({{2, first.keys}, first});
    EXPECT_TRUE(runUntil([&] { return !shortcuts.takesKeys(); }));
    portal.vanish();
    portal.appear();
    EXPECT_TRUE(runUntil([&] { return shortcuts.takesKeys(); }));
    for (const auto* name : {"other", "portal", "program"}) {
        QDBusConnection::disconnectFromBus(QLatin1String(name));
    }
}

} // namespace
} // namespace vantrel

#include "freedesktop_portal_test.moc"
