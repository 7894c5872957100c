#include "platform/wayland/display_link.h"

#include "platform/frame_timer.h"

#include <utility>

namespace vantrel::wayland {

namespace {

class WaylandDisplayLink final : public DisplayLink {
public:
    WaylandDisplayLink(WaylandOverlayWindows& windows, std::uint32_t screen, double rate,
                       const std::function<void()>& target)
        : timer_(rate, target), frames_(windows.onFrame(screen, [this, target] {
              timer_.putOff();
              target();
          })) {}

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
