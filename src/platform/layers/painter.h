#pragma once

#include "platform/layers/layer.h"

#include <QImage>
#include <QPainterPath>
#include <QSize>

class QPainter;

namespace vantrel {

// Draws a tree as it looks at a media time. This is what a tree means; whatever a desktop puts on
// the screen has to look like it.

// The layer and those below it, with the origin of the layer's coordinates at the bottom-left
// corner of a picture of that many pixels.
[[nodiscard]] QImage paintLayer(const Layer& layer, QSize pixels, double scale, double mediaTime);

// The same into a painter whose coordinates are the layer's, y upward.
void paintLayer(QPainter& painter, const Layer& layer, double mediaTime);

// The line along an ellipse as the area between two: the toolkit's own strokes of curves are
// polygons whose corners show on scaled displays.
[[nodiscard]] QPainterPath ellipseLine(const QRectF& ellipse, double lineWidth);

// The smallest rectangle, in the layer's own coordinates, that holds the contents of it and of
// those below it; empty when there are none.
[[nodiscard]] Rect contentsBounds(const Layer& layer);

} // namespace vantrel
