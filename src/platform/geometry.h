#pragma once

// Points and rectangles with y upward, in points. Two spaces that never mix: the desktop, whose
// origin is the bottom-left corner of the primary display, and the inside of a layer or a window,
// whose origin is its own bottom-left corner.

namespace vantrel {

template <typename Space>
struct BasicPoint {
    double x = 0;
    double y = 0;

    bool operator==(const BasicPoint&) const = default;
};

template <typename Space>
struct BasicRect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool operator==(const BasicRect&) const = default;

    [[nodiscard]] constexpr double minX() const { return x; }
    [[nodiscard]] constexpr double minY() const { return y; }
    [[nodiscard]] constexpr double maxX() const { return x + width; }
    [[nodiscard]] constexpr double maxY() const { return y + height; }
    [[nodiscard]] constexpr BasicPoint<Space> origin() const { return {x, y}; }
    [[nodiscard]] constexpr BasicPoint<Space> center() const {
        return {x + width / 2, y + height / 2};
    }
    // A point on the lower or left edge is inside, one on the upper or right edge is not.
    [[nodiscard]] constexpr bool contains(BasicPoint<Space> p) const {
        return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY();
    }
    // True when the two share an area; touching edges do not count.
    [[nodiscard]] constexpr bool intersects(const BasicRect& other) const {
        return minX() < other.maxX() && other.minX() < maxX() && minY() < other.maxY() &&
               other.minY() < maxY();
    }
};

struct DesktopSpace;
struct LocalSpace;

using GlobalPoint = BasicPoint<DesktopSpace>;
using GlobalRect = BasicRect<DesktopSpace>;
using Point = BasicPoint<LocalSpace>;
using Rect = BasicRect<LocalSpace>;

// Where a point of the desktop lies inside something whose bottom-left corner is at origin.
constexpr Point toLocal(GlobalPoint point, GlobalPoint origin) {
    return {point.x - origin.x, point.y - origin.y};
}

} // namespace vantrel
