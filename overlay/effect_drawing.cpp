#include "overlay/effect_drawing.h"

#include "overlay/effect_geometry.h"
#include "platform/layers/painter.h"

#include <QPainter>
#include <QRadialGradient>

#include <algorithm>
#include <array>
#include <span>

namespace vantrel {

namespace {

struct Stop {
    double location;
    QColor color;
};

QColor rgb(double red, double green, double blue, double alpha) {
    return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green),
                            static_cast<float>(blue), static_cast<float>(alpha));
}

void drawRadial(QPainter& painter, const QRectF& rect, std::span<const Stop> stops) {
    QRadialGradient gradient(rect.center(), rect.width() / 2);
    for (const auto& stop : stops) {
        gradient.setColorAt(stop.location, stop.color);
    }
    painter.save();
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawEllipse(rect);
    painter.restore();
}

QRectF squareAround(QPointF center, double side) {
    return {center.x() - side / 2, center.y() - side / 2, side, side};
}

void fillOval(QPainter& painter, const QRectF& oval, const QColor& color) {
    painter.save();
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(oval);
    painter.restore();
}

void strokeOval(QPainter& painter, const QRectF& oval, double lineWidth, const QColor& color) {
    painter.fillPath(ellipseLine(oval, lineWidth), color);
}

void drawRing(QPainter& painter, const QRectF& box, const QColor& color) {
    const auto ring = RingGeometry::forDiameter(box.width());
    const auto inBox = [&box](const Rect& rect) {
        return QRectF(box.x() + rect.x, box.y() + rect.y, rect.width, rect.height);
    };
    const double innerAlpha = static_cast<double>(color.alphaF()) * innerRingOpacity;
    strokeOval(painter, inBox(ring.outer), ring.outerLineWidth, color);
    strokeOval(painter, inBox(ring.inner), ring.innerLineWidth, withAlpha(color, innerAlpha));
}

} // namespace

QColor toQColor(const EffectColor& color) {
    const auto component = [](double value) { return std::clamp(value, 0.0, 1.0); };
    return rgb(component(color.red), component(color.green), component(color.blue), 1);
}

QColor withAlpha(QColor color, double alpha) {
    color.setAlphaF(static_cast<float>(std::clamp(alpha, 0.0, 1.0)));
    return color;
}

void EffectDrawing::drawGlow(QPainter& painter, const QColor& color, const QRectF& rect) {
    const QColor base = color.toRgb();
    if (!base.isValid()) {
        return;
    }
    const double alpha = base.alphaF();
    const std::array stops{
        Stop{0, base},
        Stop{0.45, withAlpha(base, 0.35 * alpha)},
        Stop{1, withAlpha(base, 0)},
    };
    drawRadial(painter, rect, stops);
}

void EffectDrawing::drawLaserDot(QPainter& painter, const QColor& color, const QRectF& rect) {
    const QColor base = color.toRgb();
    if (!base.isValid()) {
        return;
    }
    const auto pale = [](double component) { return 0.9 + 0.1 * component; };
    const std::array stops{
        Stop{0, rgb(pale(base.redF()), pale(base.greenF()), pale(base.blueF()), 1)},
        Stop{0.25, base},
        Stop{0.65, base},
        Stop{0.9, withAlpha(base, 0.45)},
        Stop{1, withAlpha(base, 0)},
    };
    drawRadial(painter, rect, stops);
}

void EffectDrawing::drawHighlight(QPainter& painter, QPointF point,
                                  const HighlightSettings& settings) {
    const QRectF box = squareAround(point, settings.diameter);
    const QColor color = withAlpha(toQColor(settings.color), settings.opacity);
    switch (settings.style) {
    case HighlightStyle::filled:
        fillOval(painter, box, color);
        break;
    case HighlightStyle::ring:
        drawRing(painter, box, color);
        break;
    case HighlightStyle::glow:
        drawGlow(painter, color, box);
        break;
    }
}

void EffectDrawing::drawLaser(QPainter& painter, QPointF point, const LaserSettings& settings) {
    const QColor color = toQColor(settings.color);
    const double diameter = settings.diameter;
    drawGlow(painter, withAlpha(color, haloOpacity),
             squareAround(point, diameter * glowFactor(settings.glow)));
    drawLaserDot(painter, color, squareAround(point, diameter));
    fillOval(painter, squareAround(point, coreFactor * diameter),
             withAlpha(Qt::white, coreOpacity));
}

void EffectDrawing::drawClick(QPainter& painter, const ClickAnimation& click, double now) {
    const auto& geometry = ClickGeometry::of(click.style);
    const double progress = std::clamp((now - click.started) / geometry.duration, 0.0, 1.0);
    strokeOval(painter,
               squareAround(QPointF(click.point.x, click.point.y), geometry.diameterAt(progress)),
               geometry.lineWidth, withAlpha(click.color, (1 - progress) * clickOpacity));
}

} // namespace vantrel
