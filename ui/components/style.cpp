#include "ui/components/style.h"

#include <QApplication>
#include <QPainter>
#include <QWidget>

#include <algorithm>

namespace vantrel {

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::Window).lightness() < 128;
}

QColor toneColor(Tone tone, const QPalette& palette) {
    const bool dark = isDark(palette);
    switch (tone) {
    case Tone::primary:
        return palette.color(QPalette::Active, QPalette::WindowText);
    case Tone::secondary:
        return toneColor(Tone::primary, palette, dark ? 0.62 : 0.58);
    case Tone::tertiary:
        return toneColor(Tone::primary, palette, 0.32);
    case Tone::sheet:
        return palette.color(QPalette::Active, QPalette::Base);
    case Tone::accent:
        return palette.color(QPalette::Active, QPalette::Highlight);
    case Tone::onAccent:
        return Qt::white;
    case Tone::blue:
        return dark ? QColor(0x0A, 0x84, 0xFF) : QColor(0x00, 0x6E, 0xE6);
    case Tone::green:
        return dark ? QColor(0x30, 0xD1, 0x58) : QColor(0x1F, 0x7A, 0x36);
    case Tone::orange:
        return dark ? QColor(0xFF, 0x9F, 0x0A) : QColor(0xB8, 0x56, 0x00);
    case Tone::red:
        return dark ? QColor(0xFF, 0x6B, 0x61) : QColor(0xC9, 0x2A, 0x21);
    }
    return {};
}

QColor toneColor(Tone tone, const QPalette& palette, double opacity) {
    QColor color = toneColor(tone, palette);
    color.setAlphaF(static_cast<float>(static_cast<double>(color.alphaF()) * opacity));
    return color;
}

QFont TextStyle::font() const {
    QFont font = QApplication::font();
    font.setPixelSize(size);
    font.setWeight(weight);
    return font;
}

// Each corner is one cubic that begins 1.5 radii away, leaves its edges without a bend, and passes
// the middle of the corner where an arc of that radius does.
QPainterPath continuousRect(const QRectF& rect, double radius) {
    const double room = std::min(rect.width(), rect.height()) / 2;
    const double r = std::min(radius, room);
    const double reach = std::min(1.5 * r, room);
    const double control = (8 * (1 - M_SQRT1_2) * r - reach) / 3;
    const auto corner = [&](QPainterPath& path, QPointF vertex, QPointF in, QPointF out) {
        path.lineTo(vertex - in * reach);
        path.cubicTo(vertex - in * control, vertex + out * control, vertex + out * reach);
    };
    const QPointF right(1, 0);
    const QPointF down(0, 1);
    QPainterPath path(QPointF(rect.left() + reach, rect.top()));
    corner(path, {rect.right(), rect.top()}, right, down);
    corner(path, {rect.right(), rect.bottom()}, down, -right);
    corner(path, {rect.left(), rect.bottom()}, -right, -down);
    corner(path, {rect.left(), rect.top()}, -down, right);
    path.closeSubpath();
    return path;
}

void drawChrome(QPainter& painter, const QPalette& palette, const QRectF& rect,
                const Chrome& chrome) {
    if (chrome.fill.opacity > 0) {
        painter.fillPath(continuousRect(rect, chrome.radius), chrome.fill.color(palette));
    }
    if (chrome.outline.opacity > 0) {
        const double half = chrome.lineWidth / 2;
        painter.strokePath(
            continuousRect(rect.adjusted(half, half, -half, -half), chrome.radius - half),
            QPen(chrome.outline.color(palette), chrome.lineWidth));
    }
}

void drawFocusRing(QPainter& painter, const QWidget& widget, const QRectF& rect, double radius) {
    if (!widget.hasFocus() || !widget.window()->testAttribute(Qt::WA_KeyboardFocusChange)) {
        return;
    }
    const auto line = [&](double inset, const QColor& color) {
        painter.strokePath(
            continuousRect(rect.adjusted(inset, inset, -inset, -inset), radius - inset),
            QPen(color, 2));
    };
    line(3, widget.palette().color(QPalette::Base));
    line(1, toneColor(Tone::primary, widget.palette(), 0.85));
}

} // namespace vantrel
