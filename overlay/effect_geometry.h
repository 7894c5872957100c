#pragma once

#include "platform/geometry.h"
#include "preferences/preferences.h"

// The numbers that the effects are made of, in points, wherever they are drawn.

namespace vantrel {

// The laser's halo, in diameters of its dot.
constexpr double glowFactor(GlowStrength strength) {
    switch (strength) {
    case GlowStrength::low:
        return 2.5;
    case GlowStrength::medium:
        return 4.0;
    case GlowStrength::high:
        return 6.0;
    }
    return 4.0;
}

inline constexpr double haloOpacity = 0.35;
inline constexpr double coreOpacity = 0.85;
inline constexpr double coreFactor = 0.18;       // of the dot's diameter
inline constexpr double innerRingOpacity = 0.75; // of the outer ring's

// The ring style, for a square box with its origin at (0, 0).
struct RingGeometry {
    double outerLineWidth = 0;
    Rect outer; // the circle in the middle of the outer line, whose edge touches the box
    double innerLineWidth = 0;
    Rect inner;

    static RingGeometry forDiameter(double diameter);
};

// A click effect at an age.
struct ClickGeometry {
    double duration = 0;  // seconds
    double lineWidth = 0; // points
    double startDiameter = 0;
    double endDiameter = 0;

    static const ClickGeometry& of(ClickStyle style);
    // From a progress of 0 at the start to one of 1 at the end.
    [[nodiscard]] double diameterAt(double progress) const {
        return startDiameter + (endDiameter - startDiameter) * progress;
    }
};

inline constexpr double clickOpacity = 0.8; // at the start; 0 at the end
inline constexpr double clickBoxSide = 96;  // no click effect reaches out of this square

} // namespace vantrel
