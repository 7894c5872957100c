#include "platform/freedesktop/status_notifier.h"

#include "platform/freedesktop/bus_call.h"

#include <QDBusMetaType>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QImage>
#include <QPixmap>
#include <QtEndian>

#include <utility>

namespace vantrel {

namespace {

constexpr QLatin1String itemPath("/StatusNotifierItem");
constexpr QLatin1String menuPath("/MenuBar");
constexpr QLatin1String watcherService("org.kde.StatusNotifierWatcher");
constexpr QLatin1String watcherPath("/StatusNotifierWatcher");
constexpr QLatin1String propertiesInterface("org.freedesktop.DBus.Properties");

BusPicture pictureOf(const QImage& image) {
    QImage pixels = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < pixels.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(pixels.scanLine(y));
        qToBigEndian<quint32>(line, pixels.width(), line);
    }
    return {pixels.width(), pixels.height(),
            QByteArray(reinterpret_cast<const char*>(pixels.constBits()), pixels.sizeInBytes())};
}

} // namespace

StatusNotifierAdaptor::StatusNotifierAdaptor(QObject* object, std::function<void(QPoint)> activated)
    : QDBusAbstractAdaptor(object), activated_(std::move(activated)) {
    qDBusRegisterMetaType<BusPicture>();
    qDBusRegisterMetaType<BusPictures>();
    qDBusRegisterMetaType<BusToolTip>();
}

void StatusNotifierAdaptor::setImage(const QIcon& image, const QString& description) {
    image_ = image;
    description_ = description;
    Q_EMIT NewIcon();
    Q_EMIT NewToolTip();
}

BusPictures StatusNotifierAdaptor::iconPixmap() const {
    BusPictures pictures;
    for (const QSize size : image_.availableSizes()) {
        pictures.append(pictureOf(image_.pixmap(size, 1).toImage()));
    }
    return pictures;
}

QDBusObjectPath StatusNotifierAdaptor::menu() const {
    return QDBusObjectPath(menuPath);
}

StatusNotifier::StatusNotifier(std::function<void(QPoint)> activated,
                               std::function<void()> hostChanged)
    : hostChanged_(std::move(hostChanged)),
      item_(new StatusNotifierAdaptor(this, std::move(activated))),
      menu_(new BusMenu(&menuObject_)) {
    // After what was begun together with it: the marks come first.
    const auto later = [this] {
        QMetaObject::invokeMethod(this, &StatusNotifier::start, Qt::QueuedConnection);
    };
    QMetaObject::invokeMethod(this, later, Qt::QueuedConnection);
}

StatusNotifier::~StatusNotifier() {
    auto bus = QDBusConnection::sessionBus();
    bus.unregisterObject(itemPath);
    bus.unregisterObject(menuPath);
}

void StatusNotifier::start() {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.registerObject(itemPath, this) ||
        !bus.registerObject(menuPath, &menuObject_)) {
        setHost(false);
        return;
    }
    auto* watchers = new QDBusServiceWatcher(watcherService, bus,
                                             QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watchers, &QDBusServiceWatcher::serviceOwnerChanged, this,
            &StatusNotifier::meetWatcher);
    // From whomever: the watcher is asked then. To connect to a name, the toolkit would look it up.
    for (const auto* change : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
        bus.connect({}, watcherPath, watcherService, QLatin1String(change), this,
                    SLOT(askForHost()));
    }
    meetWatcher();
}

void StatusNotifier::meetWatcher() {
    const auto bus = QDBusConnection::sessionBus();
    bus.asyncCall(callOf(watcherService, watcherPath, watcherService,
                         QStringLiteral("RegisterStatusNotifierItem"), {bus.baseService()}));
    setHost(std::nullopt);
    askForHost();
}

void StatusNotifier::askForHost() {
    const auto message =
        callOf(watcherService, watcherPath, propertiesInterface, QStringLiteral("Get"),
               {QString(watcherService), QStringLiteral("IsStatusNotifierHostRegistered")});
    callAsync(QDBusConnection::sessionBus(), message, this,
              [this, question = ++question_](const QDBusMessage& answer) {
                  const QDBusPendingReply<QDBusVariant> reply(answer);
                  if (question != question_) {
                      return;
                  }
                  if (reply.isError() && reply.error().type() == QDBusError::NoReply) {
                      askForHost();
                  } else {
                      setHost(reply.isValid() && reply.value().variant().toBool());
                  }
              });
}

void StatusNotifier::setHost(std::optional<bool> present) {
    if (std::exchange(hasHost_, present) != present) {
        hostChanged_();
    }
}

} // namespace vantrel
