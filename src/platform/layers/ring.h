#pragma once

#include <QImage>
#include <QPointF>
#include <QRect>

namespace vantrel {

// A circle's line, in pixels, y downward.
struct Ring {
    QPointF center;
    double radius = 0; // to the middle of the line
    double lineWidth = 0;

    // The pixels that it touches.
    [[nodiscard]] QRect box() const;
};

// Replaces the pixels of an area of a 32-bit premultiplied picture by a ring on nothing. Takes no
// memory, so that it can run in every frame. The colour is premultiplied.
void paintRing(QImage& picture, const QRect& area, const Ring& ring, QRgb color);

} // namespace vantrel
