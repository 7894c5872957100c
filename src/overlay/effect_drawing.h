#pragma once

#include "overlay/effect.h"

#include <QImage>
#include <QPointF>

class QPainter;

namespace vantrel {

struct ClickAnimation;

// How effects are painted, on the overlays, in the previews and in tests. Stateless. Painters draw
// smoothly and have their units in points; which way their y goes makes no difference.
class EffectDrawing {
public:
    // A disc without a size or a colour shows nothing.
    static void drawDisc(QPainter& painter, QPointF center, const Disc& disc);
    static void drawDiscs(QPainter& painter, QPointF center, const Effect& effect);
    // The discs in the middle of a square picture with so many points a side.
    [[nodiscard]] static QImage picture(const Effect& effect, int side, double pixelsPerPoint);
    // One frame of a click, at a moment of uptime, with its point in the painter's coordinates.
    static void drawClick(QPainter& painter, const ClickAnimation& click, double now);
};

} // namespace vantrel
