#pragma once

#include "platform/x11/connection.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel::x11 {

// What the desktop says about its scale. Programs use these in the order of toScale().
struct ScaleSettings {
    std::optional<double> fontDpi;      // Xft.dpi of the resource database, 96 being scale 1
    std::optional<int> windowScale;     // Gdk/WindowScalingFactor of the desktop's settings
    std::string screenFactors;          // QT_SCREEN_SCALE_FACTORS
    std::optional<double> globalFactor; // QT_SCALE_FACTOR

    bool operator==(const ScaleSettings&) const = default;
};

// Pixels for each point on the display with this output name and place in the list of displays,
// from 0.5 to 8; 1 when nothing says otherwise.
[[nodiscard]] double toScale(const ScaleSettings& settings, std::string_view output,
                             std::size_t index);

// Reads the settings and watches them.
class DesktopScale final : private EventHandler {
public:
    // Called when they may have changed.
    DesktopScale(Connection& connection, std::function<void()> changed);

    [[nodiscard]] const ScaleSettings& settings() const { return settings_; }

private:
    void handleEvent(const xcb_generic_event_t& event) override;
    void findOwner();
    void read();

    Connection& connection_;
    std::function<void()> changed_;
    xcb_window_t owner_ = XCB_NONE; // of the settings block
    ScaleSettings settings_;
    Subscription events_;
};

} // namespace vantrel::x11
