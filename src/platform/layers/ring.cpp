#include "platform/layers/ring.h"

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

QRgb scaled(QRgb color, double coverage) {
    const auto part = static_cast<unsigned>(std::lround(coverage * 256));
    const auto channel = [part](int value) {
        return static_cast<int>((static_cast<unsigned>(value) * part) >> 8U);
    };
    return qRgba(channel(qRed(color)), channel(qGreen(color)), channel(qBlue(color)),
                 channel(qAlpha(color)));
}

} // namespace

QRect Ring::box() const {
    const double reach = radius + lineWidth / 2;
    const QPoint topLeft(static_cast<int>(std::floor(center.x() - reach)),
                         static_cast<int>(std::floor(center.y() - reach)));
    const QPoint bottomRight(static_cast<int>(std::ceil(center.x() + reach)) - 1,
                             static_cast<int>(std::ceil(center.y() + reach)) - 1);
    return {topLeft, bottomRight};
}

void paintRing(QImage& picture, const QRect& area, const Ring& ring, QRgb color) {
    const QRect box = area.intersected(picture.rect());
    // How far from the line's middle a pixel's centre may be to be covered at all, and in full.
    const double reach = ring.lineWidth / 2 + 0.5;
    const double outer = (ring.radius + reach) * (ring.radius + reach);
    const double hole = std::max(ring.radius - reach, 0.0);
    const double inner = hole * hole;
    for (int y = box.top(); y <= box.bottom(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        const double dy = y + 0.5 - ring.center.y();
        for (int x = box.left(); x <= box.right(); ++x) {
            const double dx = x + 0.5 - ring.center.x();
            const double squared = dx * dx + dy * dy;
            if (squared >= outer || squared <= inner) {
                row[x] = 0;
                continue;
            }
            const double offset = std::abs(std::sqrt(squared) - ring.radius);
            row[x] = scaled(color, std::clamp(reach - offset, 0.0, 1.0));
        }
    }
}

} // namespace vantrel
