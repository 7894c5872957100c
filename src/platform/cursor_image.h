#pragma once

#include <QImage>
#include <QPointF>

namespace vantrel {

// A picture of the arrow pointer.
struct CursorImage {
    QImage image;    // with its device pixel ratio
    QPointF hotSpot; // in points, from the picture's top-left corner

    bool operator==(const CursorImage&) const = default;
};

// Where pictures of the pointer come from.
class CursorImages {
public:
    virtual ~CursorImages() = default;

    // For a display with that many pixels for each point.
    [[nodiscard]] virtual CursorImage arrow(double scale) const = 0;
};

} // namespace vantrel
