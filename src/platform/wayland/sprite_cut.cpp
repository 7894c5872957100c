#include "platform/wayland/sprite_cut.h"

#include <algorithm>
#include <cmath>

namespace vantrel::wayland {

namespace {

// From one point to another.
struct Span {
    int first = 0;
    int end = 0;
};

// The pixel that a point begins with.
int pixelOf(int point, double scale) {
    return static_cast<int>(std::lround(point * scale));
}

// The fewest points of a display that cover the pixels which it has of a row of these.
Span cover(int start, int length, int display, double scale) {
    const int first = std::max(start, 0);
    const int end = std::min(start + length, pixelOf(display, scale));
    if (first >= end) {
        return {};
    }
    Span span{static_cast<int>(first / scale), static_cast<int>(end / scale)};
    while (pixelOf(span.end, scale) < end) {
        ++span.end;
    }
    return span;
}

QRect between(const Span& x, const Span& y) {
    return {QPoint(x.first, y.first), QPoint(x.end - 1, y.end - 1)};
}

} // namespace

int spriteMargin(double scale) {
    return static_cast<int>(std::ceil(scale)) + 1;
}

std::optional<SpriteCut> cutAt(QPoint topLeft, QSize picture, QSize display, double scale) {
    const Span x = cover(topLeft.x(), picture.width(), display.width(), scale);
    const Span y = cover(topLeft.y(), picture.height(), display.height(), scale);
    if (x.first == x.end || y.first == y.end) {
        return std::nullopt;
    }
    const auto sourceOf = [scale](const Span& span, int start) {
        return Span{pixelOf(span.first, scale) - start, pixelOf(span.end, scale) - start};
    };
    return SpriteCut{between(x, y), between(sourceOf(x, topLeft.x()), sourceOf(y, topLeft.y()))};
}

} // namespace vantrel::wayland
