#include "ui/components/plain_style.h"

#include "ui/components/style.h"

#include <QAbstractButton>
#include <QApplication>
#include <QPainter>
#include <QStyleOptionButton>

namespace vantrel {

namespace {

constexpr double radius = 6;
constexpr int textMargin = 10; // of a pop-up

bool isDefault(const QStyleOption& option) {
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(&option);
    return button != nullptr && (button->features & QStyleOptionButton::DefaultButton) != 0 &&
           (option.state & QStyle::State_Enabled) != 0;
}

void drawPanel(QPainter& painter, const QStyleOption& option, const QWidget* widget) {
    const bool enabled = (option.state & QStyle::State_Enabled) != 0;
    const bool down = (option.state & (QStyle::State_Sunken | QStyle::State_On)) != 0;
    const bool hovered = enabled && (option.state & QStyle::State_MouseOver) != 0;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (isDefault(option)) {
        drawChrome(painter, option.palette, option.rect,
                   {.fill = {Tone::accent, 1}, .radius = radius});
        drawChrome(painter, option.palette, option.rect,
                   {.fill = {Tone::primary, down      ? 0.2
                                            : hovered ? 0.08
                                                      : 0},
                    .radius = radius});
    } else {
        drawChrome(painter, option.palette, option.rect,
                   {.fill = {Tone::primary, down      ? 0.14
                                            : hovered ? 0.09
                                                      : 0.055},
                    .outline = {Tone::primary, enabled ? 0.12 : 0.07},
                    .radius = radius});
    }
    if (widget != nullptr) {
        drawFocusRing(painter, *widget, option.rect, radius);
    }
    painter.restore();
}

// Pointing down, at the trailing edge.
void drawArrow(QPainter& painter, const QStyleOption& option) {
    const QPointF middle(option.rect.right() - 12, option.rect.center().y() + 1);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(toneColor(Tone::secondary, option.palette), 1.6, Qt::SolidLine,
                        Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(
        QPolygonF{middle + QPointF(-3.5, -2), middle + QPointF(0, 2), middle + QPointF(3.5, -2)});
    painter.restore();
}

} // namespace

PlainStyle::PlainStyle() : QProxyStyle(QStringLiteral("fusion")) {}

void PlainStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                               QPainter* painter, const QWidget* widget) const {
    if (element == PE_PanelButtonCommand) {
        drawPanel(*painter, *option, widget);
    } else if (element != PE_FrameFocusRect ||
               qobject_cast<const QAbstractButton*>(widget) == nullptr) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void PlainStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const {
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    if (element == CE_PushButtonLabel && button != nullptr && isDefault(*option)) {
        auto onAccent = *button;
        onAccent.palette.setColor(QPalette::ButtonText, toneColor(Tone::onAccent, option->palette));
        QProxyStyle::drawControl(element, &onAccent, painter, widget);
        return;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void PlainStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                    QPainter* painter, const QWidget* widget) const {
    const auto* box = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    if (control == CC_ComboBox && box != nullptr && !box->editable) {
        drawPanel(*painter, *option, widget);
        drawArrow(*painter, *option);
        return;
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QRect PlainStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                 SubControl part, const QWidget* widget) const {
    const QRect rect = QProxyStyle::subControlRect(control, option, part, widget);
    const bool isText = control == CC_ComboBox && part == SC_ComboBoxEditField;
    return isText ? rect.adjusted(option->rect.left() + textMargin - rect.left(), 0, 0, 0) : rect;
}

void installPlainStyle() {
    const QStyle* style = QApplication::style();
    // Tools that set the look of such desktops lay a style of their own over it.
    if (const auto* proxy = qobject_cast<const QProxyStyle*>(style)) {
        style = proxy->baseStyle();
    }
    if (style->inherits("QFusionStyle")) {
        QApplication::setStyle(new PlainStyle);
    }
}

} // namespace vantrel
