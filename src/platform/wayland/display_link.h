#pragma once

#include "platform/display.h"
#include "platform/wayland/overlay_windows.h"

namespace vantrel::wayland {

// With each frame of the display that shows something new, as the compositor tells, and a few times
// a second besides. To hear of other frames one would have to ask for them, and have them painted.
class WaylandDisplayLinks final : public DisplayLinks {
public:
    explicit WaylandDisplayLinks(WaylandOverlayWindows& windows) : windows_(windows) {}

    std::unique_ptr<DisplayLink> create(const Screen& screen, FrameRateRange range,
                                        std::function<void()> target) override;

private:
    WaylandOverlayWindows& windows_;
};

} // namespace vantrel::wayland
