#include "app/shell/status_icon.h"

#include "ui/components/pictogram.h"

#include <QPainter>

namespace vantrel {

namespace {

std::string_view statusSymbol(CursorMode mode) {
    switch (mode) {
    case CursorMode::off:
        return "cursorarrow";
    case CursorMode::highlight:
        return "cursorarrow.rays";
    case CursorMode::laser:
        return "scope";
    }
    return {};
}

QPixmap edged(std::string_view symbol, int side) {
    const double edge = side / 22.0;
    const QPixmap dark = pictogram(symbol, side, QColor(0, 0, 0, 110), 1);
    QPixmap picture(side, side);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    for (const QPointF to : {QPointF(1, 0), {-1, 0}, {0, 1}, {0, -1}}) {
        painter.drawPixmap(to * edge, dark);
    }
    painter.drawPixmap(0, 0, pictogram(symbol, side, QColor(0xF4, 0xF4, 0xF6), 1));
    return picture;
}

} // namespace

QIcon statusIcon(CursorMode mode) {
    QIcon icon;
    for (const int side : {16, 22, 24, 32, 48}) {
        icon.addPixmap(edged(statusSymbol(mode), side));
    }
    return icon;
}

std::string statusDescription(CursorMode mode) {
    return "Vantrel " + std::string(nameOf(mode));
}

} // namespace vantrel
