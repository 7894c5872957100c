#include "platform/wayland/display_link.h"

#include "platform/frame_timer.h"

#include <utility>

namespace vantrel::wayland {

namespace {

class WaylandDisplayLink final : public DisplayLink {
public:
    WaylandDisplayLink(double rate, std::function<void()> target)
        : timer_(rate, std::move(target)) {}

private:
    FrameTimer timer_;
};

} // namespace

std::unique_ptr<DisplayLink> WaylandDisplayLinks::create(const Screen& /*screen*/,
                                                         FrameRateRange range,
                                                         std::function<void()> target) {
    return std::make_unique<WaylandDisplayLink>(static_cast<double>(range.preferred),
                                                std::move(target));
}

} // namespace vantrel::wayland
