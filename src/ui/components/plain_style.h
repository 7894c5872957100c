#pragma once

#include <QProxyStyle>

namespace vantrel {

// For desktops that bring no style of their own: the toolkit's, with buttons and pop-ups as flat
// and round as everything else in the windows.
class PlainStyle : public QProxyStyle {
public:
    PlainStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
    [[nodiscard]] QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                       SubControl part, const QWidget* widget) const override;
};

// Takes the place of the toolkit's fallback style; other styles stay.
void installPlainStyle();

} // namespace vantrel
