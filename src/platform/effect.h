#pragma once

#include "platform/input.h"

#include <QColor>

#include <algorithm>
#include <optional>
#include <vector>

// What a mode looks like and how it behaves, as a value: all that is shown is concentric discs
// around the pointer, and a ring for each click. Sizes are in points, times in seconds.

namespace vantrel {

struct ColorStop {
    double offset = 0; // of the radius, from 0 in the centre to 1 at the edge
    QColor color{};

    bool operator==(const ColorStop&) const = default;
};

struct Disc {
    double diameter = 0;
    double lineWidth = 0; // of a circle whose outer edge has the diameter; 0 for a filled disc
    std::vector<ColorStop> stops{}; // in the order of their offsets; a single one is a plain colour

    bool operator==(const Disc&) const = default;
};

// A circle that grows and fades evenly.
struct ClickRing {
    double duration = 0;
    double lineWidth = 0;
    double startDiameter = 0; // to the middle of the line, as the end's
    double endDiameter = 0;
    double startOpacity = 0; // 0 at the end
    QColor color{};

    bool operator==(const ClickRing&) const = default;
};

struct Effect {
    std::vector<Disc> discs{};       // around the pointer, the lowest first
    std::optional<ClickRing> left{}; // for a press of that button
    std::optional<ClickRing> right{};
    std::optional<double> hideAfter{}; // the pointer's rest, if the discs hide at all

    bool operator==(const Effect&) const = default;

    // Of the largest disc.
    [[nodiscard]] double diameter() const {
        const auto largest = std::ranges::max_element(discs, {}, &Disc::diameter);
        return largest == discs.end() ? 0 : largest->diameter;
    }
    [[nodiscard]] const std::optional<ClickRing>& ringOf(MouseButton button) const {
        return button == MouseButton::left ? left : right;
    }
};

} // namespace vantrel
