#include "overlay/effect_geometry.h"

#include <algorithm>

namespace vantrel {

RingGeometry RingGeometry::forDiameter(double diameter) {
    const double w1 = std::max(std::min(0.025 * diameter, 3.0), 1.5);
    const double w2 = std::max(std::min(0.025 * diameter, 2.0), 1.5);
    const double inner = 0.2 * diameter < 16.0 ? std::max(0.2 * diameter, 8.0) : 16.0;
    const double offset = (diameter - inner + w2) / 2;
    return {
        .outerLineWidth = w1,
        .outer = {w1 / 2, w1 / 2, diameter - w1, diameter - w1},
        .innerLineWidth = w2,
        .inner = {offset, offset, inner - w2, inner - w2},
    };
}

const ClickGeometry& ClickGeometry::of(ClickStyle style) {
    static constexpr ClickGeometry ripple{0.3, 3, 16, 80};
    static constexpr ClickGeometry pulse{0.22, 6, 64, 64 * 1.18};
    return style == ClickStyle::pulse ? pulse : ripple;
}

} // namespace vantrel
