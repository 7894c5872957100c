#pragma once

#include "preferences/preferences.h"

#include <QColor>
#include <QImage>
#include <QRectF>

#include <functional>
#include <optional>

class QPainter;

namespace vantrel {

// sRGB with alpha 1.
[[nodiscard]] QColor toQColor(const EffectColor& color);
[[nodiscard]] QColor withAlpha(QColor color, double alpha);

// How the soft parts of the effects are painted. Stateless.
class EffectDrawing {
public:
    // No picture has a longer side, in pixels.
    static constexpr double maximumImageSide = 2048;

    using Draw = std::function<void(QPainter& painter, const QRectF& rect)>;

    // A square picture of size points at scale pixels for each point, drawn by a routine that is
    // given the rectangle (0, 0, size, size) in points. None unless both are finite and above zero,
    // and the picture can be made.
    [[nodiscard]] static std::optional<QImage> makeImage(double size, double scale,
                                                         const Draw& draw);

    // A soft radial glow inside the ellipse inscribed in a rectangle.
    static void drawGlow(QPainter& painter, const QColor& color, const QRectF& rect);
    // The laser's dot inside the ellipse inscribed in a rectangle.
    static void drawLaserDot(QPainter& painter, const QColor& color, const QRectF& rect);
};

} // namespace vantrel
