#include "platform/gnome/effect_message.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QList>

namespace vantrel {

namespace {

// Buttons are numbered as the shell does.
constexpr std::uint32_t leftButton = 1;
constexpr std::uint32_t rightButton = 3;

// In double precision, as the bus has no other.
struct Channels {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    Channels() = default;
    explicit Channels(const QColor& color) {
        float r = 0;
        float g = 0;
        float b = 0;
        float a = 0;
        color.getRgbF(&r, &g, &b, &a);
        red = static_cast<double>(r);
        green = static_cast<double>(g);
        blue = static_cast<double>(b);
        alpha = static_cast<double>(a);
    }
    [[nodiscard]] QColor color() const {
        return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green),
                                static_cast<float>(blue), static_cast<float>(alpha));
    }
};

} // namespace

QDBusArgument& operator<<(QDBusArgument& argument, const ColorStop& stop) {
    const Channels channels(stop.color);
    argument.beginStructure();
    argument << stop.offset << channels.red << channels.green << channels.blue << channels.alpha;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, ColorStop& stop) {
    Channels channels;
    argument.beginStructure();
    argument >> stop.offset >> channels.red >> channels.green >> channels.blue >> channels.alpha;
    argument.endStructure();
    stop.color = channels.color();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const Disc& disc) {
    argument.beginStructure();
    argument << disc.diameter << disc.lineWidth
             << QList<ColorStop>(disc.stops.begin(), disc.stops.end());
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Disc& disc) {
    QList<ColorStop> stops;
    argument.beginStructure();
    argument >> disc.diameter >> disc.lineWidth >> stops;
    argument.endStructure();
    disc.stops = {stops.begin(), stops.end()};
    return argument;
}

namespace {

struct ButtonRing {
    std::uint32_t button = 0;
    ClickRing ring;
};

QDBusArgument& operator<<(QDBusArgument& argument, const ButtonRing& button) {
    const auto& ring = button.ring;
    const Channels channels(ring.color);
    argument.beginStructure();
    argument << button.button << ring.duration << ring.lineWidth << ring.startDiameter
             << ring.endDiameter << ring.startOpacity << channels.red << channels.green
             << channels.blue;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, ButtonRing& button) {
    auto& ring = button.ring;
    Channels channels;
    argument.beginStructure();
    argument >> button.button >> ring.duration >> ring.lineWidth >> ring.startDiameter >>
        ring.endDiameter >> ring.startOpacity >> channels.red >> channels.green >> channels.blue;
    argument.endStructure();
    ring.color = channels.color();
    return argument;
}

void registerTypes() {
    qDBusRegisterMetaType<ColorStop>();
    qDBusRegisterMetaType<QList<ColorStop>>();
    qDBusRegisterMetaType<Disc>();
    qDBusRegisterMetaType<QList<Disc>>();
    qDBusRegisterMetaType<ButtonRing>();
    qDBusRegisterMetaType<QList<ButtonRing>>();
}

const auto markKey = QStringLiteral("mark");
const auto ringsKey = QStringLiteral("rings");
const auto idleKey = QStringLiteral("idle");

} // namespace

QVariantMap messageOf(const Effect& effect) {
    registerTypes();
    QList<ButtonRing> rings;
    if (effect.left) {
        rings.append({leftButton, *effect.left});
    }
    if (effect.right) {
        rings.append({rightButton, *effect.right});
    }
    return {{markKey, QVariant::fromValue(QList<Disc>(effect.discs.begin(), effect.discs.end()))},
            {ringsKey, QVariant::fromValue(rings)},
            {idleKey, effect.hideAfter.value_or(0)}};
}

Effect effectIn(const QVariantMap& message) {
    registerTypes();
    const auto discs = qdbus_cast<QList<Disc>>(message.value(markKey));
    Effect effect{.discs = {discs.begin(), discs.end()}};
    for (const auto& [button, ring] : qdbus_cast<QList<ButtonRing>>(message.value(ringsKey))) {
        (button == leftButton ? effect.left : effect.right) = ring;
    }
    if (const double idle = message.value(idleKey).toDouble(); idle > 0) {
        effect.hideAfter = idle;
    }
    return effect;
}

} // namespace vantrel
