#include "overlay/overlay_window_manager.h"

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

constexpr EventMask motionMask =
    maskOf(EventType::mouseMoved) | maskOf(EventType::leftMouseDragged) |
    maskOf(EventType::rightMouseDragged) | maskOf(EventType::otherMouseDragged);

bool needsConfiguring(const OverlayView& view, CursorMode mode, const AppPreferences& preferences) {
    return view.renderedMode != mode || !view.renderedPreferences ||
           view.renderedPreferences->highlight != preferences.highlight ||
           view.renderedPreferences->laser != preferences.laser;
}

} // namespace

// Called by the display link and the monitors; holds the manager weakly.
class OverlayWindowManager::OverlayFrameTarget {
public:
    explicit OverlayFrameTarget(const std::shared_ptr<OverlayWindowManager*>& owner)
        : owner_(owner) {}

    void operator()() const {
        if (const auto owner = owner_.lock()) {
            (*owner)->tick();
        }
    }

private:
    std::weak_ptr<OverlayWindowManager*> owner_;
};

const Screen* fastestScreen(const std::vector<Screen>& screens) {
    const auto fastest = std::ranges::max_element(screens, {}, &Screen::maximumFramesPerSecond);
    return fastest == screens.end() ? nullptr : &*fastest;
}

FrameRateRange frameRateRange(double maximumFramesPerSecond) {
    if (!(maximumFramesPerSecond >= 1)) {
        return {60, 60, 60};
    }
    const auto maximum = static_cast<float>(maximumFramesPerSecond);
    return {std::min(maximum, 60.0F), maximum, maximum};
}

OverlayWindowManager::OverlayWindowManager(const Desktop& desktop)
    : desktop_(desktop),
      self_(std::make_shared<OverlayWindowManager*>(this)),
      lastPoint_(desktop.pointer.location()),
      lastActivity_(desktop.clock.uptime()) {
    clicks_.reserve(maximumClicks);
    screenChanges_ = desktop_.screens.onLayoutChange([this] { rebuild(); });
}

OverlayWindowManager::~OverlayWindowManager() {
    stop();
}

void OverlayWindowManager::apply(CursorMode mode, const AppPreferences& preferences) {
    if (preferences != preferences_ || mode != mode_) {
        needsRender_ = true;
        effect_ = effectOf(mode, preferences);
    }
    preferences_ = preferences;
    if (mode != mode_) {
        clicks_.clear();
        lastActivity_ = desktop_.clock.uptime();
    }
    mode_ = mode;
    if (mode_ == CursorMode::off) {
        stop();
        return;
    }
    stopped_ = false;
    if (windows_.empty()) {
        rebuild();
    }
    startMotionMonitors();
    tick();
}

void OverlayWindowManager::rebuild() {
    needsRender_ = true;
    displayLink_.reset();
    // Until the new ones show what they showed.
    const auto former = std::exchange(windows_, {});
    if (stopped_) {
        return;
    }
    for (const auto& screen : desktop_.screens.list()) {
        windows_.push_back(makeOverlay(screen));
    }
    startDisplayLink();
    tick();
}

OverlayWindowManager::Overlay OverlayWindowManager::makeOverlay(const Screen& screen) const {
    Overlay overlay;
    overlay.view =
        std::make_unique<OverlayView>(Rect{0, 0, screen.frame.width, screen.frame.height});
    overlay.window = desktop_.overlayWindows.create(screen);
    overlay.view->setWindow(overlay.window.get());
    overlay.window->setRootLayer(overlay.view->rootLayer());
    overlay.window->orderFront();
    return overlay;
}

void OverlayWindowManager::startDisplayLink() {
    if (const auto* screen = fastestScreen(desktop_.screens.list())) {
        displayLink_ = desktop_.displayLinks.create(
            *screen, frameRateRange(screen->maximumFramesPerSecond), OverlayFrameTarget(self_));
    }
}

void OverlayWindowManager::startMotionMonitors() {
    const OverlayFrameTarget target(self_);
    if (!globalMotionMonitor_) {
        globalMotionMonitor_ =
            desktop_.eventMonitors.addGlobal(motionMask, [target](const Event&) { target(); });
    }
    if (!localMotionMonitor_) {
        localMotionMonitor_ =
            desktop_.eventMonitors.addLocal(motionMask, [target](const Event& event) {
                target();
                return std::optional(event);
            });
    }
}

void OverlayWindowManager::stop() {
    stopped_ = true;
    needsRender_ = true;
    lastHidden_.reset();
    displayLink_.reset();
    removeMonitor(globalMotionMonitor_);
    removeMonitor(localMotionMonitor_);
    clicks_.clear();
    windows_.clear();
}

void OverlayWindowManager::removeMonitor(std::optional<EventMonitors::Token>& monitor) {
    if (monitor) {
        desktop_.eventMonitors.remove(*monitor);
        monitor.reset();
    }
}

void OverlayWindowManager::addClick(GlobalPoint point, MouseButton button) {
    const double now = desktop_.clock.uptime();
    lastActivity_ = now;
    if (effect_.ringOf(button)) {
        if (clicks_.size() >= maximumClicks) {
            clicks_.erase(clicks_.begin());
        }
        clicks_.push_back({QUuid::createUuid(), point, now, preferences_.click.style,
                           toQColor(preferences_.highlight.color)});
    }
    tick();
}

bool OverlayWindowManager::isIdle(double now) const {
    return effect_.hideAfter && now - lastActivity_ >= *effect_.hideAfter;
}

void OverlayWindowManager::tick() {
    if (mode_ == CursorMode::off) {
        return;
    }
    const double now = desktop_.clock.uptime();
    const auto point = desktop_.pointer.location();
    const bool moved = point != lastPoint_;
    if (moved) {
        lastActivity_ = now;
        const bool knew = knowsPointer();
        lastPoint_ = point;
        if (knowsPointer() != knew && onPointerKnown) {
            onPointerKnown();
        }
    }
    const bool hadClicks = !clicks_.empty();
    std::erase_if(clicks_, [now](const auto& click) { return !click.isLive(now); });
    const bool hidden = !point || isIdle(now);
    if (!moved && !needsRender_ && !hadClicks && lastHidden_ == hidden) {
        return;
    }
    needsRender_ = false;
    lastHidden_ = hidden;
    const double mediaTime = desktop_.clock.mediaTime();
    for (auto& [view, window] : windows_) {
        redraw(*view, window->frame(), now, mediaTime);
    }
    desktop_.transaction.flush();
}

void OverlayWindowManager::redraw(OverlayView& view, const GlobalRect& frame, double now,
                                  double mediaTime) {
    desktop_.transaction.begin();
    if (needsConfiguring(view, mode_, preferences_)) {
        view.configure(mode_, preferences_);
        view.renderedPreferences = preferences_;
        view.renderedMode = mode_;
    }
    if (lastPoint_) {
        view.cursorLayer().setPosition(toLocal(*lastPoint_, frame.origin()));
    }
    view.cursorLayer().setHidden(*lastHidden_);
    view.updateClicks(clicks_, now, mediaTime);
    desktop_.transaction.commit();
}

} // namespace vantrel
