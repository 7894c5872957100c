#include "overlay/click_animation.h"

#include "overlay/effect_geometry.h"

namespace vantrel {

double ClickAnimation::duration() const {
    return ClickGeometry::of(style).duration;
}

GlobalRect ClickAnimation::box() const {
    return squareAround(point, clickBoxSide);
}

} // namespace vantrel
