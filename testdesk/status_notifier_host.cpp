#include "testdesk/status_notifier_host.h"

#include "testdesk/status_notifier_watcher.h"
#include "testdesk/wait.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QVariantMap>

#include <atomic>
#include <stdexcept>
#include <utility>

namespace vantrel::desktop {
namespace {

const auto watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const auto watcherPath = QStringLiteral("/StatusNotifierWatcher");
const auto itemPath = QStringLiteral("/StatusNotifierItem");
const auto itemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const auto menuInterface = QStringLiteral("com.canonical.dbusmenu");

QString uniqueName() {
    static std::atomic<int> last = 0;
    return QStringLiteral("status-notifier-host-%1").arg(++last);
}

std::vector<StatusIcon> readIcons(const QDBusArgument& argument) {
    std::vector<StatusIcon> icons;
    argument.beginArray();
    while (!argument.atEnd()) {
        StatusIcon& icon = icons.emplace_back();
        argument.beginStructure();
        argument >> icon.width >> icon.height >> icon.pixels;
        argument.endStructure();
    }
    argument.endArray();
    return icons;
}

MenuEntry readEntry(const QDBusArgument& argument) {
    MenuEntry entry;
    QVariantMap properties;
    argument.beginStructure();
    argument >> entry.id >> properties;
    entry.label = properties.value(QStringLiteral("label")).toString().toStdString();
    entry.enabled = properties.value(QStringLiteral("enabled"), true).toBool();
    if (!properties.value(QStringLiteral("toggle-type")).toString().isEmpty()) {
        entry.checked = properties.value(QStringLiteral("toggle-state")).toInt() == 1;
    }
    const auto keys = qdbus_cast<QList<QStringList>>(properties.value(QStringLiteral("shortcut")));
    entry.shortcut = keys.value(0).join(QLatin1Char('+')).toStdString();
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        entry.entries.push_back(readEntry(child.variant().value<QDBusArgument>()));
    }
    argument.endArray();
    argument.endStructure();
    return entry;
}

const MenuEntry* find(const std::vector<MenuEntry>& entries, const std::string& label) {
    for (const MenuEntry& entry : entries) {
        if (entry.label == label) {
            return &entry;
        }
        if (const MenuEntry* below = find(entry.entries, label)) {
            return below;
        }
    }
    return nullptr;
}

} // namespace

void StatusNotifierWatcher::RegisterStatusNotifierItem(const QString& service) {
    // Some programs tell a path of theirs instead.
    const QString sender = service.startsWith(QLatin1Char('/')) ? message().service() : service;
    items_.removeAll(sender);
    items_.append(sender);
    Q_EMIT StatusNotifierItemRegistered(sender);
}

void StatusNotifierWatcher::RegisterStatusNotifierHost(const QString& /*service*/) {
    hasHost_ = true;
    Q_EMIT StatusNotifierHostRegistered();
}

StatusNotifierHost::StatusNotifierHost(const PrivateBus& bus, Start start)
    : name_(uniqueName()),
      bus_(QDBusConnection::connectToBus(QString::fromStdString(bus.address()), name_)),
      watcher_(new StatusNotifierWatcher) {
    bus_.registerObject(watcherPath, watcher_, QDBusConnection::ExportAllContents);
    for (const QString& interface : {itemInterface, menuInterface}) {
        bus_.connect({}, {}, interface, {}, watcher_, SLOT(note(QDBusMessage)));
    }
    watcher_->moveToThread(&thread_);
    QObject::connect(&thread_, &QThread::finished, watcher_, &QObject::deleteLater);
    thread_.start();
    if (start == Start::hanging) {
        hang();
    }
    if (!bus_.registerService(watcherService)) {
        throw std::runtime_error("there is a status notifier host already, or no bus");
    }
    if (start == Start::complete) {
        complete();
    }
}

void StatusNotifierHost::complete() {
    if (std::exchange(hanging_, false)) {
        answers_.release();
    }
    QMetaObject::invokeMethod(watcher_, [this] { watcher_->RegisterStatusNotifierHost({}); });
}

void StatusNotifierHost::hang() {
    hanging_ = true;
    QMetaObject::invokeMethod(watcher_, [this] { answers_.acquire(); });
}

StatusNotifierHost::~StatusNotifierHost() {
    if (hanging_) {
        answers_.release();
    }
    bus_.unregisterService(watcherService);
    bus_.unregisterObject(watcherPath);
    thread_.quit();
    thread_.wait();
    QDBusConnection::disconnectFromBus(name_);
}

std::vector<StatusNotifierItem> StatusNotifierHost::items() const {
    QStringList services;
    QMetaObject::invokeMethod(watcher_, &StatusNotifierWatcher::items, Qt::BlockingQueuedConnection,
                              &services);
    std::vector<StatusNotifierItem> items;
    for (const QString& service : services) {
        if (bus_.interface()->isServiceRegistered(service)) {
            items.emplace_back(bus_, service);
        }
    }
    return items;
}

std::optional<StatusNotifierItem> StatusNotifierHost::waitForItem() const {
    std::vector<StatusNotifierItem> found;
    waitFor([&] {
        found = items();
        return !found.empty();
    });
    return found.empty() ? std::nullopt : std::optional(found.back());
}

bool StatusNotifierHost::hasHeard(const char* signal) const {
    QStringList heard;
    QMetaObject::invokeMethod(watcher_, &StatusNotifierWatcher::heard, Qt::BlockingQueuedConnection,
                              &heard);
    return heard.contains(QLatin1String(signal));
}

QVariant StatusNotifierItem::property(const char* name) const {
    auto message = QDBusMessage::createMethodCall(service_, itemPath,
                                                  QStringLiteral("org.freedesktop.DBus.Properties"),
                                                  QStringLiteral("Get"));
    message << itemInterface << QString::fromLatin1(name);
    const QDBusMessage reply = bus_.call(message);
    return reply.arguments().value(0).value<QDBusVariant>().variant();
}

std::string StatusNotifierItem::title() const {
    return property("Title").toString().toStdString();
}

std::string StatusNotifierItem::toolTip() const {
    const QVariant value = property("ToolTip");
    if (!value.canConvert<QDBusArgument>()) {
        return {};
    }
    const auto argument = value.value<QDBusArgument>();
    QString iconName;
    QString title;
    argument.beginStructure();
    argument >> iconName;
    readIcons(argument);
    argument >> title;
    argument.endStructure();
    return title.toStdString();
}

std::vector<StatusIcon> StatusNotifierItem::icons() const {
    const QVariant value = property("IconPixmap");
    return value.canConvert<QDBusArgument>() ? readIcons(value.value<QDBusArgument>())
                                             : std::vector<StatusIcon>();
}

bool StatusNotifierItem::call(const char* method, PixelPoint place) const {
    auto message = QDBusMessage::createMethodCall(service_, itemPath, itemInterface,
                                                  QString::fromLatin1(method));
    message << place.x << place.y;
    return bus_.call(message).type() == QDBusMessage::ReplyMessage;
}

bool StatusNotifierItem::activate(PixelPoint place) const {
    return call("Activate", place);
}

QString StatusNotifierItem::menuPath() const {
    return property("Menu").value<QDBusObjectPath>().path();
}

std::vector<MenuEntry> StatusNotifierItem::menu() const {
    auto message = QDBusMessage::createMethodCall(service_, menuPath(), menuInterface,
                                                  QStringLiteral("GetLayout"));
    message << 0 << -1 << QStringList();
    const QDBusMessage reply = bus_.call(message);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        return {};
    }
    return readEntry(reply.arguments().value(1).value<QDBusArgument>()).entries;
}

bool StatusNotifierItem::choose(const std::string& label) const {
    const std::vector<MenuEntry> entries = menu();
    const MenuEntry* entry = find(entries, label);
    if (entry == nullptr) {
        return false;
    }
    auto message = QDBusMessage::createMethodCall(service_, menuPath(), menuInterface,
                                                  QStringLiteral("Event"));
    message << entry->id << QStringLiteral("clicked")
            << QVariant::fromValue(QDBusVariant(QString())) << 0U;
    return bus_.call(message).type() == QDBusMessage::ReplyMessage;
}

} // namespace vantrel::desktop
