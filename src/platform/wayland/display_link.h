#pragma once

#include "platform/display.h"

namespace vantrel::wayland {

// At the rate of the display. The compositor's own frame events would have it paint for each of
// them, and come only while it does; where the pointer goes is told by other events.
class WaylandDisplayLinks final : public DisplayLinks {
public:
    std::unique_ptr<DisplayLink> create(const Screen& screen, FrameRateRange range,
                                        std::function<void()> target) override;
};

} // namespace vantrel::wayland
