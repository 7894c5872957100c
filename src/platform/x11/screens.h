#pragma once

#include "platform/display.h"
#include "platform/x11/connection.h"
#include "platform/x11/desktop_scale.h"
#include "platform/x11/pixel_map.h"

#include <vector>

namespace vantrel::x11 {

// The displays that RandR calls monitors.
class X11Screens final : public Screens, private EventHandler {
public:
    explicit X11Screens(Connection& connection);

    [[nodiscard]] const std::vector<Screen>& list() const override { return screens_; }
    Subscription onChange(std::function<void()> callback) override;
    Subscription onLayoutChange(std::function<void()> callback) override;

    // How the displays of list() lie in the root window, in the same order.
    [[nodiscard]] const PixelMap& pixelMap() const { return pixelMap_; }
    // The pixels of a display of list(), in the root window.
    [[nodiscard]] QRect pixelsOf(const Screen& screen) const;
    // Those of them that no earlier display shows as well: what is drawn on both would be drawn
    // twice.
    [[nodiscard]] std::vector<QRect> partsOf(const Screen& screen) const;

private:
    void handleEvent(const xcb_generic_event_t& event) override;
    void eventsDrained() override;
    void read();
    [[nodiscard]] std::size_t indexOf(const Screen& screen) const;

    Connection& connection_;
    bool stale_ = false;
    std::vector<Screen> screens_;
    PixelMap pixelMap_;
    Observers<> changes_;
    Observers<> layoutChanges_;
    DesktopScale scale_;
    Subscription events_;
};

// What each rectangle covers that no earlier one does, in rectangles that do not overlap.
[[nodiscard]] std::vector<std::vector<QRect>> uncovered(const std::vector<QRect>& rects);

// Frames for each second of a mode, 0 when it has no clock.
[[nodiscard]] double refreshRate(std::uint32_t dotClock, std::uint16_t horizontalTotal,
                                 std::uint16_t verticalTotal, std::uint32_t flags);

} // namespace vantrel::x11
