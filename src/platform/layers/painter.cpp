#include "platform/layers/painter.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

QRectF toQt(const Rect& rect) {
    return QRectF(rect.x, rect.y, rect.width, rect.height).normalized();
}

bool isFinite(const Rect& rect) {
    return std::isfinite(rect.x) && std::isfinite(rect.y) && std::isfinite(rect.width) &&
           std::isfinite(rect.height);
}

void paintShape(QPainter& painter, const ShapeLayer& shape, const ShapeState& state) {
    if (isFinite(state.ellipse) && shape.strokeColor().isValid()) {
        painter.fillPath(ellipseLine(toQt(state.ellipse), shape.lineWidth()), shape.strokeColor());
    }
}

// An area that contents are drawn in; none when there is nothing to draw or no room for it.
std::optional<Rect> contentsArea(const Layer& layer) {
    const auto& bounds = layer.bounds();
    if (!layer.contents() || !isFinite(bounds) || !(bounds.width > 0) || !(bounds.height > 0)) {
        return std::nullopt;
    }
    return Rect{0, 0, bounds.width, bounds.height};
}

Rect united(const Rect& a, const Rect& b) {
    if (a.width <= 0 || a.height <= 0) {
        return b;
    }
    if (b.width <= 0 || b.height <= 0) {
        return a;
    }
    const double x = std::min(a.x, b.x);
    const double y = std::min(a.y, b.y);
    return {x, y, std::max(a.maxX(), b.maxX()) - x, std::max(a.maxY(), b.maxY()) - y};
}

Rect paintedShape(const ShapeLayer& shape, double mediaTime) {
    const auto state = shape.stateAt(mediaTime);
    if (!state || !isFinite(state->ellipse) || !shape.strokeColor().isValid()) {
        return {};
    }
    const auto ellipse = toQt(state->ellipse);
    const double margin = shape.lineWidth() / 2;
    return {ellipse.x() - margin, ellipse.y() - margin, ellipse.width() + 2 * margin,
            ellipse.height() + 2 * margin};
}

} // namespace

QPainterPath ellipseLine(const QRectF& ellipse, double lineWidth) {
    const double half = lineWidth / 2;
    QPainterPath path;
    path.addEllipse(ellipse.adjusted(-half, -half, half, half));
    if (ellipse.width() > lineWidth && ellipse.height() > lineWidth) {
        path.addEllipse(ellipse.adjusted(half, half, -half, -half));
    }
    return path;
}

void paintLayer(QPainter& painter, const Layer& layer, double mediaTime) {
    painter.save();
    if (layer.masksToBounds()) {
        painter.setClipRect(toQt({0, 0, layer.bounds().width, layer.bounds().height}),
                            Qt::IntersectClip);
    }
    const auto* shape = dynamic_cast<const ShapeLayer*>(&layer);
    const auto state = shape != nullptr ? shape->stateAt(mediaTime) : std::nullopt;
    painter.setOpacity(painter.opacity() * (state ? state->opacity : layer.opacity()));
    if (const auto area = contentsArea(layer)) {
        layer.contents()(painter, toQt(*area));
    }
    if (state) {
        paintShape(painter, *shape, *state);
    }
    for (const auto* sublayer : layer.sublayers()) {
        const auto frame = sublayer->frame();
        if (!sublayer->hidden() && isFinite(frame)) {
            painter.save();
            painter.translate(frame.x, frame.y);
            paintLayer(painter, *sublayer, mediaTime);
            painter.restore();
        }
    }
    painter.restore();
}

QImage paintLayer(const Layer& layer, QSize pixels, double scale, double mediaTime) {
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(0, pixels.height());
    painter.scale(scale, -scale);
    paintLayer(painter, layer, mediaTime);
    return image;
}

Rect paintedBounds(const Layer& layer, double mediaTime) {
    Rect all;
    if (const auto area = contentsArea(layer)) {
        all = *area;
    }
    if (const auto* shape = dynamic_cast<const ShapeLayer*>(&layer)) {
        all = united(all, paintedShape(*shape, mediaTime));
    }
    for (const auto* sublayer : layer.sublayers()) {
        const auto frame = sublayer->frame();
        if (!sublayer->hidden() && isFinite(frame)) {
            auto part = paintedBounds(*sublayer, mediaTime);
            part.x += frame.x;
            part.y += frame.y;
            all = united(all, part);
        }
    }
    return all;
}

} // namespace vantrel
