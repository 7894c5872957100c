#include "app/shell/status_icon.h"

#include "ui/components/pictogram.h"

#include <QIconEngine>
#include <QPainter>

#include <algorithm>

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

QPixmap tinted(QPixmap picture, const QColor& color) {
    QPainter painter(&picture);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(picture.rect(), color);
    return picture;
}

// Draws what a tray asks for when it asks.
class StatusIconEngine final : public QIconEngine {
public:
    explicit StatusIconEngine(CursorMode mode) : symbol_(statusSymbol(mode)) {}

    [[nodiscard]] QIconEngine* clone() const override { return new StatusIconEngine(*this); }
    QList<QSize> availableSizes(QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        return {{16, 16}, {22, 22}, {24, 24}, {32, 32}, {48, 48}};
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paint(&painter, QRect({}, size), mode, state);
        return picture;
    }
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode /*mode*/,
               QIcon::State /*state*/) override {
        const int side = std::min(rect.width(), rect.height());
        const double ratio = painter->device()->devicePixelRatio();
        const QPixmap light = pictogram(symbol_, side, QColor(0xF4, 0xF4, 0xF6), ratio);
        const QPixmap dark = tinted(light, QColor(0, 0, 0, 110));
        const double edge = side / 22.0;
        const QPointF corner = rect.topLeft();
        for (const QPointF to : {QPointF(1, 0),
                                 {-1, 0},
                                 {0, 1},
                                 {0, -1},
                                 {0.7, 0.7},
                                 {0.7, -0.7},
                                 {-0.7, 0.7},
                                 {-0.7, -0.7}}) {
            painter->drawPixmap(corner + to * edge, dark);
        }
        painter->drawPixmap(corner, light);
    }

private:
    std::string_view symbol_;
};

} // namespace

QIcon statusIcon(CursorMode mode) {
    return QIcon(new StatusIconEngine(mode));
}

std::string statusDescription(CursorMode mode) {
    return "Vantrel " + std::string(nameOf(mode));
}

} // namespace vantrel
