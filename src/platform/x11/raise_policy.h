#pragma once

#include <cstdint>
#include <limits>
#include <map>

namespace vantrel::x11 {

// Decides whether the overlays go above a window that came above them. They do, unless that window
// keeps answering by coming back: then it wants to be on top more than they do, and two that both
// insist would never rest. Such a window is left above until it goes away, or has left it at that
// for a while.
class RaisePolicy {
public:
    using Window = std::uint32_t;

    static constexpr int answersAllowed = 4;      // answers
    static constexpr double answerTime = 1.0;     // seconds; what comes later is no answer
    static constexpr double forgivingTime = 10.0; // seconds without coming above

    // The window is above the overlays now, in seconds of any clock.
    [[nodiscard]] bool shouldRaise(Window window, double now);
    // It was closed or hidden.
    void forget(Window window) { rivals_.erase(window); }

private:
    static constexpr double never = -std::numeric_limits<double>::infinity();

    struct Rival {
        double cameAbove = never;
        double raisedOver = never;
        int answers = 0;
    };

    std::map<Window, Rival> rivals_;
};

} // namespace vantrel::x11
