#pragma once

#include "platform/input.h"

#include <ostream>

namespace vantrel {

// What a click monitor reports.
struct Click {
    MouseButton button = MouseButton::left;
    GlobalPoint point;

    bool operator==(const Click&) const = default;
};

inline void PrintTo(const Click& click, std::ostream* out) {
    *out << (click.button == MouseButton::right ? "right" : "left") << " at " << click.point.x
         << ", " << click.point.y;
}

} // namespace vantrel
