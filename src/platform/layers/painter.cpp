#include "platform/layers/painter.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <optional>

namespace vantrel {

namespace {

QRectF toQt(const Rect& rect) {
    return QRectF(rect.x, rect.y, rect.width, rect.height).normalized();
}

bool isFinite(const Rect& rect) {
    return std::isfinite(rect.x) && std::isfinite(rect.y) && std::isfinite(rect.width) &&
           std::isfinite(rect.height);
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
    if (!layer.showsAt(mediaTime)) {
        return;
    }
    painter.save();
    if (layer.masksToBounds()) {
        painter.setClipRect(toQt({0, 0, layer.bounds().width, layer.bounds().height}),
                            Qt::IntersectClip);
    }
    if (const auto area = contentsArea(layer)) {
        layer.contents()(painter, toQt(*area), mediaTime);
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

Rect contentsBounds(const Layer& layer) {
    Rect all;
    if (const auto area = contentsArea(layer)) {
        all = *area;
    }
    for (const auto* sublayer : layer.sublayers()) {
        const auto frame = sublayer->frame();
        if (!sublayer->hidden() && isFinite(frame)) {
            auto part = contentsBounds(*sublayer);
            part.x += frame.x;
            part.y += frame.y;
            all = united(all, part);
        }
    }
    return all;
}

} // namespace vantrel
