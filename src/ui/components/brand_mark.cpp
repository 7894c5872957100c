#include "ui/components/brand_mark.h"

#include "ui/components/accessibility.h"
#include "ui/components/style.h"

#include <QPainter>
#include <QSvgRenderer>

namespace vantrel {

namespace {

QPixmap logo(QSize size, double ratio) {
    QPixmap picture(size * ratio);
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF square(0, 0, size.width(), size.height());
    painter.setClipPath(continuousRect(square, 0.25 * size.width()));
    QSvgRenderer(QStringLiteral(":/BrandLogo.svg")).render(&painter, square);
    return picture;
}

} // namespace

QIcon brandIcon() {
    QIcon icon;
    for (const int side : {16, 32, 48, 128}) {
        icon.addPixmap(logo({side, side}, 1));
    }
    return icon;
}

BrandMark::BrandMark(int size) {
    setFixedSize(size, size);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    hideFromScreenReaders(this);
}

void BrandMark::paintEvent(QPaintEvent* /*event*/) {
    if (picture_.isNull() || picture_.devicePixelRatio() != devicePixelRatio()) {
        picture_ = logo(size(), devicePixelRatio());
    }
    QPainter(this).drawPixmap(0, 0, picture_);
}

} // namespace vantrel
