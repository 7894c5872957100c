#pragma once

#include <cstdint>
#include <map>

namespace vantrel::x11 {

// Decides whether the overlays go above a window that came above them. They do, unless that window
// keeps coming back: then it wants to be on top more than they do, and two that both insist would
// never rest. Such a window stays above until it goes away.
class RaisePolicy {
public:
    using Window = std::uint32_t;

    static constexpr int patience = 4;    // times
    static constexpr double period = 2.0; // within that many seconds

    // The window is above the overlays now, in seconds of any clock.
    [[nodiscard]] bool shouldRaise(Window window, double now);
    // It was closed or hidden.
    void forget(Window window) { rivals_.erase(window); }

private:
    struct Rival {
        double since = 0;
        int times = 0;
    };

    std::map<Window, Rival> rivals_;
};

} // namespace vantrel::x11
