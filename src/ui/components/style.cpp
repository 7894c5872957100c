#include "ui/components/style.h"

#include <QApplication>
#include <QFontInfo>
#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

constexpr double enoughContrast = 4.5;

double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

// Where a text of that colour is read worst: on what is most like it of all that it may lie on,
// under a faint fill of its own.
QColor groundOf(const QColor& text, const QPalette& palette) {
    const auto [from, to] = windowEnds(palette);
    const auto worst = std::min({from, to, palette.color(QPalette::Active, QPalette::Base),
                                 palette.color(QPalette::Active, QPalette::Button)},
                                [&text](const QColor& a, const QColor& b) {
                                    return contrast(a, text) < contrast(b, text);
                                });
    return laidOver(worst, text, 0.1);
}

// Nearer to the colour of labels where it would be hard to read.
QColor readable(const QColor& color, const QPalette& palette) {
    const auto label = palette.color(QPalette::Active, QPalette::WindowText);
    for (int percent = 0; percent < 100; percent += 5) {
        const auto text = laidOver(color, label, percent / 100.0);
        if (contrast(text, groundOf(text, palette)) >= enoughContrast) {
            return text;
        }
    }
    return label;
}

} // namespace

double contrast(const QColor& a, const QColor& b) {
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor laidOver(const QColor& below, const QColor& color, double opacity) {
    const auto mixed = [opacity](float a, float b) {
        return static_cast<float>(std::lerp(double{a}, double{b}, opacity));
    };
    return QColor::fromRgbF(mixed(below.redF(), color.redF()),
                            mixed(below.greenF(), color.greenF()),
                            mixed(below.blueF(), color.blueF()));
}

std::pair<QColor, QColor> windowEnds(const QPalette& palette) {
    const auto window = palette.color(QPalette::Active, QPalette::Window);
    return {laidOver(window, QColor::fromRgbF(0.0F, 0.48F, 1.0F), 0.08),
            laidOver(window, QColor::fromRgbF(1.0F, 0.8F, 0.0F), 0.04)};
}

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::Window).lightness() < 128;
}

QPalette darkPalette() {
    QPalette palette(QColor(0x3A, 0x3A, 0x3E), QColor(0x2A, 0x2A, 0x2D));
    palette.setColor(QPalette::Base, QColor(0x1E, 0x1E, 0x20));
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        palette.setColor(QPalette::Active, role, Qt::white);
        palette.setColor(QPalette::Inactive, role, Qt::white);
    }
    palette.setColor(QPalette::Highlight, QColor(0x0A, 0x84, 0xFF));
    return palette;
}

void follow(const Appearance& appearance) {
    static bool isOurs = false;
    static const QFont usual = QApplication::font();
    if (!isOurs && appearance.dark && !isDark(QApplication::palette())) {
        QApplication::setPalette(darkPalette());
        isOurs = true;
    } else if (isOurs && !appearance.dark) {
        QApplication::setPalette(QPalette());
        isOurs = false;
    }
    auto font = usual;
    if (usual.pointSizeF() > 0) {
        font.setPointSizeF(usual.pointSizeF() * appearance.textScale);
    }
    if (font != QApplication::font()) {
        QApplication::setFont(font);
    }
}

QColor toneColor(Tone tone, const QPalette& palette) {
    const bool dark = isDark(palette);
    const auto primary = palette.color(QPalette::Active, QPalette::WindowText);
    switch (tone) {
    case Tone::primary:
        return primary;
    case Tone::secondary:
        return readable(laidOver(palette.color(QPalette::Active, QPalette::Window), primary,
                                 dark ? 0.62 : 0.58),
                        palette);
    case Tone::tertiary:
        return toneColor(Tone::primary, palette, 0.32);
    case Tone::sheet:
        return palette.color(QPalette::Active, QPalette::Base);
    case Tone::accent:
        return palette.color(QPalette::Active, QPalette::Highlight);
    case Tone::accentText:
        return readable(palette.color(QPalette::Active, QPalette::Highlight), palette);
    case Tone::onAccent:
        return Qt::white;
    case Tone::blue:
        return {0x00, 0x6E, 0xE6};
    case Tone::green:
        return readable(dark ? QColor(0x30, 0xD1, 0x58) : QColor(0x1F, 0x7A, 0x36), palette);
    case Tone::orange:
        return readable(dark ? QColor(0xFF, 0x9F, 0x0A) : QColor(0xB8, 0x56, 0x00), palette);
    case Tone::red:
        return readable(dark ? QColor(0xFF, 0x6B, 0x61) : QColor(0xC9, 0x2A, 0x21), palette);
    }
    return {};
}

QColor toneColor(Tone tone, const QPalette& palette, double opacity) {
    QColor color = toneColor(tone, palette);
    color.setAlphaF(static_cast<float>(static_cast<double>(color.alphaF()) * opacity));
    return color;
}

QPalette tint(const QPalette& palette) {
    QPalette tinted;
    tinted.setColor(QPalette::Highlight, toneColor(Tone::blue, palette));
    tinted.setColor(QPalette::HighlightedText, toneColor(Tone::onAccent, palette));
    return tinted;
}

double textScale() {
    constexpr double usual = 15; // pixels, of 11 points
    return std::clamp(QFontInfo(QApplication::font()).pixelSize() / usual, 1.0, 1.5);
}

QFont TextStyle::font() const {
    QFont font = QApplication::font();
    font.setPixelSize(qRound(size * textScale()));
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
