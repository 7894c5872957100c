#include "ui/components/section_card.h"

#include "ui/components/accessibility.h"
#include "ui/components/label.h"
#include "ui/components/stack.h"
#include "ui/components/style.h"

#include <QPainter>
#include <QPixmapCache>
#include <QVBoxLayout>
#include <qdrawutil.h>

namespace vantrel {

namespace {

constexpr double cornerRadius = 18;
constexpr int shadowRadius = 8;
constexpr int shadowDrop = 3;
constexpr double shadowOpacity = 0.025;

// Around a corner of the outermost sheet, to where its edges are straight.
constexpr int cornerReach = 40;

// A stack of sheets, each fainter the farther it reaches, no larger than its corners need.
QPixmap shadowPicture(double ratio) {
    constexpr int side = 2 * cornerReach + 1;
    const auto key = QStringLiteral("shadow %1").arg(ratio);
    QPixmap picture;
    if (QPixmapCache::find(key, &picture)) {
        return picture;
    }
    picture = QPixmap((QSizeF(side, side) * ratio).toSize());
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF outermost(0, 0, side, side);
    for (int inset = 0; inset < 2 * shadowRadius; inset += 2) {
        const double radius = cornerRadius + shadowRadius - inset;
        painter.fillPath(
            continuousRect(outermost.adjusted(inset, inset, -inset, -inset), radius),
            QColor::fromRgbF(0, 0, 0, static_cast<float>(shadowOpacity / shadowRadius)));
    }
    painter.end();
    QPixmapCache::insert(key, picture);
    return picture;
}

} // namespace

SectionCard::SectionCard(ViewContext& view, const Wording& title,
                         const std::optional<Wording>& subtitle, QWidget* content) {
    setAccessibleRole(this, QAccessible::Grouping);
    constexpr TextStyle titleStyle{15, QFont::DemiBold};
    auto* header = column(
        4, {paragraph(view, title, titleStyle),
            subtitle ? paragraph(view, *subtitle, calloutText.toned(Tone::secondary)) : nullptr});
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(18, 18, 18, 18);
    layout->addWidget(column(16, {header, content}));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    nameForScreenReaders(view, this, title);
}

void SectionCard::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawChrome(
        painter, palette(), rect(),
        {.fill = {Tone::sheet, 0.72}, .outline = {Tone::primary, 0.06}, .radius = cornerRadius});
}

void SectionCard::drawShadow(QPainter& painter, const QRect& card) const {
    const QPixmap picture = shadowPicture(devicePixelRatio());
    const int reach = qRound(cornerReach * devicePixelRatio());
    qDrawBorderPixmap(&painter,
                      card.adjusted(-shadowRadius, -shadowRadius, shadowRadius, shadowRadius)
                          .translated(0, shadowDrop),
                      {cornerReach, cornerReach, cornerReach, cornerReach}, picture, picture.rect(),
                      {reach, reach, reach, reach});
}

} // namespace vantrel
