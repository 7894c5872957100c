#include "platform/layers/ring_layer.h"

#include "platform/layers/painter.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

// A circle's line, in pixels, y downward.
struct CircleLine {
    QPointF center;
    double radius = 0; // to the middle of the line
    double lineWidth = 0;

    // The pixels that it touches.
    [[nodiscard]] QRect box() const {
        const double reach = radius + lineWidth / 2;
        const QPoint topLeft(static_cast<int>(std::floor(center.x() - reach)),
                             static_cast<int>(std::floor(center.y() - reach)));
        const QPoint bottomRight(static_cast<int>(std::ceil(center.x() + reach)) - 1,
                                 static_cast<int>(std::ceil(center.y() + reach)) - 1);
        return {topLeft, bottomRight};
    }
};

double diameterAt(const ClickRing& ring, double progress) {
    return std::lerp(ring.startDiameter, ring.endDiameter, progress);
}

QColor colorAt(const ClickRing& ring, double progress) {
    auto color = ring.color;
    color.setAlphaF(color.alphaF() * static_cast<float>(std::lerp(ring.startOpacity, 0, progress)));
    return color;
}

QRgb scaled(QRgb color, double coverage) {
    const auto part = static_cast<unsigned>(std::lround(coverage * 256));
    const auto channel = [part](int value) {
        return static_cast<int>((static_cast<unsigned>(value) * part) >> 8U);
    };
    return qRgba(channel(qRed(color)), channel(qGreen(color)), channel(qBlue(color)),
                 channel(qAlpha(color)));
}

// Within an area of the picture. The colour is premultiplied.
void fill(QImage& picture, const QRect& area, const CircleLine& line, QRgb color) {
    // How far from the line's middle a pixel's centre may be to be covered at all, and in full.
    const double reach = line.lineWidth / 2 + 0.5;
    const double outer = (line.radius + reach) * (line.radius + reach);
    const double hole = std::max(line.radius - reach, 0.0);
    const double inner = hole * hole;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        const double dy = y + 0.5 - line.center.y();
        for (int x = area.left(); x <= area.right(); ++x) {
            const double dx = x + 0.5 - line.center.x();
            const double squared = dx * dx + dy * dy;
            if (squared < outer && squared > inner) {
                const double offset = std::abs(std::sqrt(squared) - line.radius);
                row[x] = scaled(color, std::clamp(reach - offset, 0.0, 1.0));
            }
        }
    }
}

} // namespace

RingLayer::RingLayer(const ClickRing& ring, double beginTime) : ring_(ring), beginTime_(beginTime) {
    setContents([this](QPainter& painter, const QRectF& bounds, double mediaTime) {
        paintRing(painter, bounds.center(), ring_, progressAt(mediaTime));
    });
}

bool RingLayer::showsAt(double mediaTime) const {
    return mediaTime >= beginTime_ && mediaTime < beginTime_ + ring_.duration;
}

QRect RingLayer::paintInto(QImage& picture, QPointF middle, double scale, double mediaTime) const {
    const double progress = progressAt(mediaTime);
    const CircleLine line{
        .center = middle,
        .radius = diameterAt(ring_, progress) / 2 * scale,
        .lineWidth = ring_.lineWidth * scale,
    };
    const QRect box = line.box().intersected(picture.rect());
    fill(picture, box, line, qPremultiply(colorAt(ring_, progress).rgba()));
    return box;
}

void paintRing(QPainter& painter, QPointF center, const ClickRing& ring, double progress) {
    const double diameter = diameterAt(ring, progress);
    const QRectF circle(center - QPointF(diameter, diameter) / 2, QSizeF(diameter, diameter));
    painter.fillPath(ellipseLine(circle, ring.lineWidth), colorAt(ring, progress));
}

} // namespace vantrel
