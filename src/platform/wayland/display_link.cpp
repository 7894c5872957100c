#include "platform/wayland/display_link.h"

#include "platform/frame_timer.h"

#include <algorithm>

namespace vantrel::wayland {

namespace {

// Calls for each second while nothing is drawn, at most. What waits for these is the hiding at
// rest.
constexpr double restRate = 10;

class WaylandDisplayLink final : public DisplayLink {
public:
    WaylandDisplayLink(WaylandOverlayWindows& windows, std::uint32_t screen, double rate,
                       const std::function<void()>& target)
        : timer_(std::min(rate, restRate), target), frames_(windows.onFrame(screen, target)) {}

private:
    FrameTimer timer_;
    Subscription frames_;
};

} // namespace

std::unique_ptr<DisplayLink> WaylandDisplayLinks::create(const Screen& screen, FrameRateRange range,
                                                         std::function<void()> target) {
    return std::make_unique<WaylandDisplayLink>(windows_, screen.id,
                                                static_cast<double>(range.preferred), target);
}

} // namespace vantrel::wayland
