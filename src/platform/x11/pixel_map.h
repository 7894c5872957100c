#pragma once

#include "platform/geometry.h"

#include <QPoint>
#include <QRect>

#include <cstdint>
#include <vector>

namespace vantrel::x11 {

// A display in pixels of the root window, y downward.
struct DisplayArea {
    QRect pixels;
    double scale = 1; // pixels for each point

    bool operator==(const DisplayArea&) const = default;
};

// The one place where pixels of the root window, y downward, become points of the desktop, y
// upward. Displays that touch in pixels touch in points, whatever their scales are, so that what
// crosses their border stays whole. The first display is the primary one.
class PixelMap {
public:
    PixelMap() = default;
    explicit PixelMap(std::vector<DisplayArea> displays);

    [[nodiscard]] const std::vector<DisplayArea>& displays() const { return displays_; }
    [[nodiscard]] const GlobalRect& frame(std::size_t display) const { return frames_[display]; }

    // A pixel stands for the point at its top-left corner. Pixels outside of every display are
    // measured from the nearest one; without displays, pixels are points.
    [[nodiscard]] GlobalPoint toGlobal(QPoint pixel) const;
    [[nodiscard]] GlobalRect toGlobal(const QRect& pixels, std::size_t display) const;

    bool operator==(const PixelMap&) const = default;

private:
    [[nodiscard]] std::size_t displayNear(QPoint pixel) const;
    [[nodiscard]] GlobalPoint toGlobal(QPoint pixel, std::size_t display) const;

    std::vector<DisplayArea> displays_;
    std::vector<GlobalRect> frames_;
};

} // namespace vantrel::x11
