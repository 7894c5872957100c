#pragma once

#include "platform/shell.h"

#include <QColor>
#include <QFont>
#include <QPainterPath>
#include <QPalette>
#include <QRectF>

#include <utility>

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
    accentText, // on a faint fill of the accent too
    onAccent,
    blue, // dark enough for white on it, on light desktops and on dark ones
    green,
    orange,
    red,
};

// How much of what there is room for.
enum class Density : unsigned char { compact, regular };

// Of two opaque colours: from 1, when they are equally bright, to 21.
[[nodiscard]] double contrast(const QColor& a, const QColor& b);
// Over an opaque colour.
[[nodiscard]] QColor laidOver(const QColor& below, const QColor& color, double opacity);

// From the upper left of a window to its lower right its ground runs from the first of these by the
// window's colour to the second.
[[nodiscard]] std::pair<QColor, QColor> windowEnds(const QPalette& palette);
[[nodiscard]] bool isDark(const QPalette& palette);
// Where the toolkit has no colours of the desktop's.
[[nodiscard]] QPalette darkPalette();
// Gives the windows that there are, and those to come, what the toolkit does not know by itself:
// dark colours, and texts of that size where they are made from now on.
void follow(const Appearance& appearance);
// Tones of texts stand out enough from the window and from a sheet to be read when they are small.
[[nodiscard]] QColor toneColor(Tone tone, const QPalette& palette);
// At a part of its own opacity.
[[nodiscard]] QColor toneColor(Tone tone, const QPalette& palette, double opacity);
// What sets a window of this program apart from the desktop's colours, and nothing else.
[[nodiscard]] QPalette tint(const QPalette& palette);

struct TextStyle {
    int size = 13;
    QFont::Weight weight = QFont::Normal;
    Tone tone = Tone::primary;

    [[nodiscard]] constexpr TextStyle toned(Tone other) const { return {size, weight, other}; }
    [[nodiscard]] constexpr TextStyle weighted(QFont::Weight other) const {
        return {size, other, tone};
    }
    // In the desktop's family, and larger where the desktop's texts are larger than usual.
    [[nodiscard]] QFont font() const;
};

// From 1, for desktops with texts of up to 11 points, to 1.5.
[[nodiscard]] double textScale();

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
