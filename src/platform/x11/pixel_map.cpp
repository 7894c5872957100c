#include "platform/x11/pixel_map.h"

#include <algorithm>
#include <optional>

namespace vantrel::x11 {

namespace {

// Points with y downward, from the top-left corner of the primary display.
struct Corner {
    double x = 0;
    double y = 0;
};

// How far, in points, the start of a display lies behind the start of its neighbour along the
// border that they share. The part of an edge that only one of them has is measured at that one's
// scale.
double along(int start, double scale, int neighbourStart, double neighbourScale) {
    const int pixels = start - neighbourStart;
    return pixels / (pixels >= 0 ? neighbourScale : scale);
}

bool overlap(int start, int length, int otherStart, int otherLength) {
    return start < otherStart + otherLength && otherStart < start + length;
}

// Where a display lies that touches one whose corner is known.
std::optional<Corner> cornerBeside(const DisplayArea& display, const DisplayArea& neighbour,
                                   Corner corner) {
    const QRect& a = display.pixels;
    const QRect& b = neighbour.pixels;
    const double y = corner.y + along(a.y(), display.scale, b.y(), neighbour.scale);
    const double x = corner.x + along(a.x(), display.scale, b.x(), neighbour.scale);
    if (overlap(a.y(), a.height(), b.y(), b.height())) {
        if (a.x() == b.x() + b.width()) {
            return Corner{corner.x + b.width() / neighbour.scale, y};
        }
        if (b.x() == a.x() + a.width()) {
            return Corner{corner.x - a.width() / display.scale, y};
        }
    }
    if (overlap(a.x(), a.width(), b.x(), b.width())) {
        if (a.y() == b.y() + b.height()) {
            return Corner{x, corner.y + b.height() / neighbour.scale};
        }
        if (b.y() == a.y() + a.height()) {
            return Corner{x, corner.y - a.height() / display.scale};
        }
    }
    return std::nullopt;
}

Corner cornerApart(const DisplayArea& display, const DisplayArea& primary) {
    const QPoint offset = display.pixels.topLeft() - primary.pixels.topLeft();
    return {offset.x() / primary.scale, offset.y() / primary.scale};
}

// One more display whose corner is found beside one that has been placed; false when there is none.
bool placeOne(const std::vector<DisplayArea>& displays,
              std::vector<std::optional<Corner>>& corners) {
    for (std::size_t i = 0; i < displays.size(); ++i) {
        for (std::size_t j = 0; j < displays.size() && !corners[i]; ++j) {
            if (corners[j]) {
                corners[i] = cornerBeside(displays[i], displays[j], *corners[j]);
                if (corners[i]) {
                    return true;
                }
            }
        }
    }
    return false;
}

std::vector<Corner> place(const std::vector<DisplayArea>& displays) {
    std::vector<std::optional<Corner>> corners(displays.size());
    for (std::size_t i = 0; i < displays.size(); ++i) {
        if (!corners[i]) {
            corners[i] = cornerApart(displays[i], displays.front());
        }
        while (placeOne(displays, corners)) {
        }
    }
    std::vector<Corner> placed;
    std::ranges::transform(corners, std::back_inserter(placed), [](const auto& c) { return *c; });
    return placed;
}

int distance(const QRect& rect, QPoint pixel) {
    const int x = std::max({rect.left() - pixel.x(), pixel.x() - rect.right(), 0});
    const int y = std::max({rect.top() - pixel.y(), pixel.y() - rect.bottom(), 0});
    return x + y;
}

} // namespace

PixelMap::PixelMap(std::vector<DisplayArea> displays) : displays_(std::move(displays)) {
    if (displays_.empty()) {
        return;
    }
    const auto corners = place(displays_);
    const double primaryHeight = displays_.front().pixels.height() / displays_.front().scale;
    for (std::size_t i = 0; i < displays_.size(); ++i) {
        const auto& [pixels, scale] = displays_[i];
        const double height = pixels.height() / scale;
        frames_.push_back(
            {corners[i].x, primaryHeight - corners[i].y - height, pixels.width() / scale, height});
    }
}

GlobalPoint PixelMap::toGlobal(QPoint pixel) const {
    if (displays_.empty()) {
        return {static_cast<double>(pixel.x()), -static_cast<double>(pixel.y())};
    }
    return toGlobal(pixel, displayNear(pixel));
}

GlobalRect PixelMap::toGlobal(const QRect& pixels, std::size_t display) const {
    const auto topLeft = toGlobal(pixels.topLeft(), display);
    const double scale = displays_[display].scale;
    const double height = pixels.height() / scale;
    return {topLeft.x, topLeft.y - height, pixels.width() / scale, height};
}

GlobalPoint PixelMap::toGlobal(QPoint pixel, std::size_t display) const {
    const auto& [pixels, scale] = displays_[display];
    const auto& frame = frames_[display];
    const QPoint inside = pixel - pixels.topLeft();
    return {frame.minX() + inside.x() / scale, frame.maxY() - inside.y() / scale};
}

std::size_t PixelMap::displayNear(QPoint pixel) const {
    const auto nearest =
        std::ranges::min_element(displays_, {}, [pixel](const DisplayArea& display) {
            return distance(display.pixels, pixel);
        });
    return static_cast<std::size_t>(nearest - displays_.begin());
}

} // namespace vantrel::x11
