#pragma once

#include "overlay/overlay_view.h"
#include "platform/desktop.h"
#include "preferences/preferences.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace vantrel {

// Everything that puts the effects on the screen: a window for each display, a display link and two
// motion monitors that make it follow the pointer, and the clicks that are playing. While the
// desktop does not know where the pointer is, nothing marks it. Points are points of the desktop,
// times are seconds of uptime.
class OverlayWindowManager {
public:
    static constexpr std::size_t maximumClicks = 8;

    explicit OverlayWindowManager(const Desktop& desktop);
    ~OverlayWindowManager();
    OverlayWindowManager(const OverlayWindowManager&) = delete;
    OverlayWindowManager& operator=(const OverlayWindowManager&) = delete;

    // Shows a mode with these preferences. After loading, after every change of either, on wake.
    void apply(CursorMode mode, const AppPreferences& preferences);
    // For every mouse-down. It counts as activity, and plays a click effect where the settings ask
    // for one.
    void addClick(GlobalPoint point, MouseButton button);
    // Takes everything off the screen and lets go of the display link and the monitors, until the
    // next apply().
    void stop();
    // Makes windows and display link anew, for the displays that there are now.
    void rebuild();
    // Brings the screen up to date, when anything changed since the last time.
    void tick();

    // Whether the desktop knew where the pointer is when it was asked last, as it is while a mode
    // is shown.
    [[nodiscard]] bool knowsPointer() const { return lastPoint_.has_value(); }
    std::function<void()> onPointerKnown; // called when that has changed

private:
    // The view outlives the window that shows it.
    struct Overlay {
        std::unique_ptr<OverlayView> view;
        std::unique_ptr<OverlayWindow> window;
    };
    class OverlayFrameTarget;

    [[nodiscard]] Overlay makeOverlay(const Screen& screen) const;
    void startDisplayLink();
    void startMotionMonitors();
    void removeMonitor(std::optional<EventMonitors::Token>& monitor);
    [[nodiscard]] bool isIdle(double now) const;
    void redraw(OverlayView& view, const GlobalRect& frame, double now, double mediaTime);

    const Desktop desktop_;
    // What the link and the monitors know of this object; empty once it is gone.
    std::shared_ptr<OverlayWindowManager*> self_;
    std::vector<Overlay> windows_;
    std::unique_ptr<DisplayLink> displayLink_;
    std::optional<EventMonitors::Token> globalMotionMonitor_;
    std::optional<EventMonitors::Token> localMotionMonitor_;
    std::optional<GlobalPoint> lastPoint_; // nothing while the desktop does not know
    double lastActivity_ = 0;
    bool stopped_ = true;                // also in a mode that shows something, as before sleep
    std::vector<ClickAnimation> clicks_; // the oldest first
    CursorMode mode_ = CursorMode::off;
    AppPreferences preferences_;
    Effect effect_; // of both
    bool needsRender_ = true;
    std::optional<bool> lastHidden_; // as last drawn
    Subscription screenChanges_;
};

// The display that the frames are paced by: the fastest, the first of equals; null without
// displays.
[[nodiscard]] const Screen* fastestScreen(const std::vector<Screen>& screens);
// The rates to ask of a display link for a display with this maximum.
[[nodiscard]] FrameRateRange frameRateRange(double maximumFramesPerSecond);

} // namespace vantrel
