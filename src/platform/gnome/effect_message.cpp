#include "platform/gnome/effect_message.h"

#include "platform/freedesktop/bus_structure.h"

#include <QDBusMetaType>
#include <QList>

#include <algorithm>
#include <iterator>

namespace vantrel {

namespace {

// Buttons are numbered as the shell does.
constexpr std::uint32_t leftButton = 1;
constexpr std::uint32_t rightButton = 3;

} // namespace

// (ddddd)
struct BusStop {
    double offset = 0;
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 0;

    static auto members(auto& self) {
        return std::tie(self.offset, self.red, self.green, self.blue, self.alpha);
    }
};

// (dda(ddddd))
struct BusDisc {
    double diameter = 0;
    double lineWidth = 0;
    QList<BusStop> stops{};

    static auto members(auto& self) { return std::tie(self.diameter, self.lineWidth, self.stops); }
};

// (udddddddd)
struct BusRing {
    std::uint32_t button = 0;
    double duration = 0;
    double lineWidth = 0;
    double startDiameter = 0;
    double endDiameter = 0;
    double startOpacity = 0;
    double red = 0;
    double green = 0;
    double blue = 0;

    static auto members(auto& self) {
        return std::tie(self.button, self.duration, self.lineWidth, self.startDiameter,
                        self.endDiameter, self.startOpacity, self.red, self.green, self.blue);
    }
};

namespace {

BusStop busStop(const ColorStop& stop) {
    const auto& color = stop.color;
    return {.offset = stop.offset,
            .red = static_cast<double>(color.redF()),
            .green = static_cast<double>(color.greenF()),
            .blue = static_cast<double>(color.blueF()),
            .alpha = static_cast<double>(color.alphaF())};
}

BusDisc busDisc(const Disc& disc) {
    BusDisc result{.diameter = disc.diameter, .lineWidth = disc.lineWidth};
    std::ranges::transform(disc.stops, std::back_inserter(result.stops), busStop);
    return result;
}

BusRing busRing(std::uint32_t button, const ClickRing& ring) {
    const auto color = busStop({0, ring.color});
    return {.button = button,
            .duration = ring.duration,
            .lineWidth = ring.lineWidth,
            .startDiameter = ring.startDiameter,
            .endDiameter = ring.endDiameter,
            .startOpacity = ring.startOpacity,
            .red = color.red,
            .green = color.green,
            .blue = color.blue};
}

} // namespace

QVariantMap messageOf(const Effect& effect) {
    qDBusRegisterMetaType<BusStop>();
    qDBusRegisterMetaType<QList<BusStop>>();
    qDBusRegisterMetaType<BusDisc>();
    qDBusRegisterMetaType<QList<BusDisc>>();
    qDBusRegisterMetaType<BusRing>();
    qDBusRegisterMetaType<QList<BusRing>>();
    QList<BusDisc> discs;
    std::ranges::transform(effect.discs, std::back_inserter(discs), busDisc);
    QList<BusRing> rings;
    if (effect.left) {
        rings.append(busRing(leftButton, *effect.left));
    }
    if (effect.right) {
        rings.append(busRing(rightButton, *effect.right));
    }
    return {{QStringLiteral("mark"), QVariant::fromValue(discs)},
            {QStringLiteral("rings"), QVariant::fromValue(rings)},
            {QStringLiteral("idle"), effect.hideAfter.value_or(0)}};
}

} // namespace vantrel
