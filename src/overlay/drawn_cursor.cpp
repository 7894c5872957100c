#include "overlay/drawn_cursor.h"

#include <QPainter>
#include <QPainterPath>

#include <array>

namespace vantrel {

namespace {

constexpr QSizeF size(16, 22); // points
constexpr QPointF tip(2, 2);

QPainterPath outline() {
    constexpr std::array<QPointF, 7> corners{
        {{0, 0}, {0, 15.6}, {3.6, 12.3}, {6, 17.9}, {8.5, 16.8}, {6.1, 11.3}, {10.9, 11.3}}};
    QPainterPath path(tip);
    for (const auto& corner : corners) {
        path.lineTo(tip + corner);
    }
    path.closeSubpath();
    return path;
}

} // namespace

CursorImage DrawnCursor::arrow(double scale) const {
    QImage image((size * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    painter.setPen(QPen(Qt::white, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::white);
    painter.drawPath(outline());
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x16, 0x18, 0x1F));
    painter.drawPath(outline());
    painter.end();
    image.setDevicePixelRatio(scale);
    return {image, tip};
}

} // namespace vantrel
