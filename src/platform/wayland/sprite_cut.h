#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>

// How a picture comes to lie on the pixels of a display where compositors place things by points.

namespace vantrel::wayland {

// Where a part of a picture goes, so that each of its pixels is one of the display's.
struct SpriteCut {
    QRect points; // of the display, from its top-left corner, y downward
    QRect source; // pixels of the picture, which may reach beyond it by up to spriteMargin()

    bool operator==(const SpriteCut&) const = default;
};

// Transparent pixels that a picture needs around it.
[[nodiscard]] int spriteMargin(double scale);

// A picture at a pixel of a display with that size in points; nothing where they do not meet.
[[nodiscard]] std::optional<SpriteCut> cutAt(QPoint topLeft, QSize picture, QSize display,
                                             double scale);

} // namespace vantrel::wayland
