#include "overlay/effect_drawing.h"

#include "overlay/overlay_view.h"
#include "platform/layers/painter.h"
#include "platform/layers/ring_layer.h"

#include <QPainter>
#include <QRadialGradient>

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

QRectF circleAround(QPointF center, double diameter) {
    return {center.x() - diameter / 2, center.y() - diameter / 2, diameter, diameter};
}

QBrush brushOf(const Disc& disc, QPointF center) {
    if (disc.stops.size() == 1) {
        return disc.stops.front().color;
    }
    QRadialGradient gradient(center, disc.diameter / 2);
    for (const auto& [offset, color] : disc.stops) {
        gradient.setColorAt(offset, color);
    }
    return gradient;
}

bool isVisible(const Disc& disc) {
    return std::isfinite(disc.diameter) && disc.diameter > disc.lineWidth && !disc.stops.empty() &&
           std::ranges::all_of(disc.stops, [](const auto& stop) { return stop.color.isValid(); });
}

} // namespace

void EffectDrawing::drawDisc(QPainter& painter, QPointF center, const Disc& disc) {
    if (!isVisible(disc)) {
        return;
    }
    const auto brush = brushOf(disc, center);
    if (disc.lineWidth > 0) {
        painter.fillPath(
            ellipseLine(circleAround(center, disc.diameter - disc.lineWidth), disc.lineWidth),
            brush);
        return;
    }
    painter.save();
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush);
    painter.drawEllipse(circleAround(center, disc.diameter));
    painter.restore();
}

QImage EffectDrawing::picture(const Effect& effect, int side, double pixelsPerPoint) {
    const int pixels = static_cast<int>(std::lround(side * pixelsPerPoint));
    QImage picture(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixelsPerPoint, pixelsPerPoint);
    drawDiscs(painter, QPointF(side, side) / 2, effect);
    return picture;
}

void EffectDrawing::drawDiscs(QPainter& painter, QPointF center, const Effect& effect) {
    for (const auto& disc : effect.discs) {
        drawDisc(painter, center, disc);
    }
}

void EffectDrawing::drawClick(QPainter& painter, const ClickAnimation& click, double now) {
    const auto ring = click.ring();
    const double progress = std::clamp((now - click.started) / ring.duration, 0.0, 1.0);
    paintRing(painter, QPointF(click.point.x, click.point.y), ring, progress);
}

} // namespace vantrel
