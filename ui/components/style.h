#pragma once

#include <QColor>
#include <QFont>
#include <QPainterPath>
#include <QPalette>
#include <QRectF>

class QPainter;
class QWidget;

// How the parts look: colours by role, which follow the desktop's palette, fonts and shapes. Sizes
// are in points, which are device-independent pixels.

namespace vantrel {

enum class Tone : unsigned char {
    primary, // labels, in three degrees
    secondary,
    tertiary,
    sheet, // what stands out from the window
    accent,
    onAccent,
    blue,
    green,
    orange,
    red,
};

[[nodiscard]] bool isDark(const QPalette& palette);
[[nodiscard]] QColor toneColor(Tone tone, const QPalette& palette);
// At a part of its own opacity.
[[nodiscard]] QColor toneColor(Tone tone, const QPalette& palette, double opacity);

struct TextStyle {
    int size = 13;
    QFont::Weight weight = QFont::Normal;
    Tone tone = Tone::primary;

    [[nodiscard]] constexpr TextStyle toned(Tone other) const { return {size, weight, other}; }
    [[nodiscard]] constexpr TextStyle weighted(QFont::Weight other) const {
        return {size, other, tone};
    }
    // In the desktop's family.
    [[nodiscard]] QFont font() const;
};

inline constexpr TextStyle titleText{22};
inline constexpr TextStyle bodyText{13};
inline constexpr TextStyle calloutText{12};
inline constexpr TextStyle captionText{10};

// A rounded rectangle whose curvature sets in gently. Radii that leave no straight edge give a
// capsule or a circle.
[[nodiscard]] QPainterPath continuousRect(const QRectF& rect, double radius);

// A tone at an opacity of its own.
struct Paint {
    Tone tone = Tone::primary;
    double opacity = 0;

    [[nodiscard]] QColor color(const QPalette& palette) const {
        return toneColor(tone, palette, opacity);
    }
};

// What lies behind a part: a continuous rounded rectangle, and the line inside its edge.
struct Chrome {
    Paint fill;
    Paint outline;
    double lineWidth = 1;
    double radius = 12;
};
// Into a smoothing painter.
void drawChrome(QPainter& painter, const QPalette& palette, const QRectF& rect,
                const Chrome& chrome);

// Around what the keyboard is at, in two shades that are seen on any colour; nothing while the
// pointer is what the user works with.
void drawFocusRing(QPainter& painter, const QWidget& widget, const QRectF& rect, double radius);

} // namespace vantrel
