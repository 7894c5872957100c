#pragma once

#include "overlay/click_animation.h"
#include "overlay/effect.h"

#include <QPointF>

class QPainter;

namespace vantrel {

// How effects are painted, on the overlays, in the previews and in tests. Stateless. Painters draw
// smoothly and have their units in points; which way their y goes makes no difference.
class EffectDrawing {
public:
    // A disc without a size or a colour shows nothing.
    static void drawDisc(QPainter& painter, QPointF center, const Disc& disc);
    static void drawDiscs(QPainter& painter, QPointF center, const Effect& effect);
    // One frame of a click, at a moment of uptime, with its point in the painter's coordinates.
    static void drawClick(QPainter& painter, const ClickAnimation& click, double now);
};

} // namespace vantrel
