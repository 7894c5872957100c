#pragma once

#include "overlay/effect.h"
#include "platform/layers/ring_layer.h"
#include "platform/overlay.h"
#include "preferences/preferences.h"

#include <QUuid>

#include <map>
#include <memory>
#include <optional>
#include <span>

namespace vantrel {

// One click effect that is playing.
struct ClickAnimation {
    QUuid id; // fresh for every click
    GlobalPoint point;
    double started = 0; // seconds of uptime
    ClickStyle style = ClickStyle::ripple;
    QColor color; // opaque

    bool operator==(const ClickAnimation&) const = default;

    [[nodiscard]] ClickRing ring() const { return clickRing(style, color); }
    [[nodiscard]] double duration() const { return ring().duration; } // seconds
    [[nodiscard]] bool isLive(double now) const { return now - started < duration(); }
    // The square that it may draw in.
    static constexpr double boxSide = 96;
    [[nodiscard]] GlobalRect box() const {
        return {point.x - boxSide / 2, point.y - boxSide / 2, boxSide, boxSide};
    }
};

// What one overlay window shows: the highlight or the laser, built once for each change of settings
// and then only moved, and above it the clicks that are playing.
class OverlayView {
public:
    // The frame is in the window's coordinates.
    explicit OverlayView(const Rect& frame);
    ~OverlayView();
    OverlayView(const OverlayView&) = delete;
    OverlayView& operator=(const OverlayView&) = delete;

    [[nodiscard]] Layer& rootLayer() { return rootLayer_; }
    // Sits at the pointer; its position and hidden flag are the owner's to write.
    [[nodiscard]] Layer& cursorLayer() { return cursorLayer_; }

    // The window that shows this view; null while there is none. Must stay valid until replaced or
    // reset.
    void setWindow(const OverlayWindow* window) { window_ = window; }

    // Builds the effect of a mode anew.
    void configure(CursorMode mode, const AppPreferences& preferences);
    // Starts the live clicks that touch this display and are not shown yet, at the phase that they
    // are in, and takes away those that are over or no longer listed. Times are uptime, mediaTime
    // is the same moment for animations.
    void updateClicks(std::span<const ClickAnimation> clicks, double now, double mediaTime);

    // What the layers were last configured with, kept by the owner.
    std::optional<AppPreferences> renderedPreferences;
    CursorMode renderedMode = CursorMode::off;

private:
    static void show(Layer& layer, const Disc& disc, double side);
    [[nodiscard]] bool shows(const ClickAnimation& click, double now) const;
    void addClick(const ClickAnimation& click, double now, double mediaTime);

    const OverlayWindow* window_ = nullptr;
    Layer rootLayer_;
    Layer cursorLayer_;
    Layer glowLayer_;
    Layer middleGlowLayer_;
    Layer innerRingLayer_;
    Layer shapeLayer_;
    std::map<QUuid, std::unique_ptr<RingLayer>> clickLayers_;
};

} // namespace vantrel
