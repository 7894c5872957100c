#pragma once

#include "overlay/click_animation.h"
#include "preferences/preferences.h"

#include <QColor>
#include <QPointF>
#include <QRectF>

class QPainter;

namespace vantrel {

// sRGB with alpha 1.
[[nodiscard]] QColor toQColor(const EffectColor& color);
[[nodiscard]] QColor withAlpha(QColor color, double alpha);

// How the effects are painted. Stateless. Painters draw smoothly and have their units in points;
// which way their y goes makes no difference.
class EffectDrawing {
public:
    // A soft radial glow inside the ellipse inscribed in a rectangle.
    static void drawGlow(QPainter& painter, const QColor& color, const QRectF& rect);
    // The laser's dot inside the ellipse inscribed in a rectangle.
    static void drawLaserDot(QPainter& painter, const QColor& color, const QRectF& rect);

    // Whole effects around a point, as the overlays show them.
    static void drawHighlight(QPainter& painter, QPointF point, const HighlightSettings& settings);
    static void drawLaser(QPainter& painter, QPointF point, const LaserSettings& settings);
    // One frame of a click, at a moment of uptime, with its point in the painter's coordinates.
    static void drawClick(QPainter& painter, const ClickAnimation& click, double now);
};

} // namespace vantrel
