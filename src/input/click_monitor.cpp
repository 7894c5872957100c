#include "input/click_monitor.h"

#include <utility>

namespace vantrel {

namespace {

constexpr EventMask pressMask =
    maskOf(EventType::leftMouseDown) | maskOf(EventType::rightMouseDown);

GlobalPoint pointOf(const Event& event) {
    return event.window != nullptr
               ? event.window->convertPointToScreen(event.locationInWindow)
               : GlobalPoint{event.locationInWindow.x, event.locationInWindow.y};
}

} // namespace

ClickMonitor::Operations ClickMonitor::operationsOf(EventMonitors& monitors) {
    return {
        .installGlobal =
            [&monitors](EventMask mask, EventMonitors::GlobalHandler handler) {
                return monitors.addGlobal(mask, std::move(handler));
            },
        .installLocal =
            [&monitors](EventMask mask, EventMonitors::LocalHandler handler) {
                return monitors.addLocal(mask, std::move(handler));
            },
        .remove = [&monitors](Token token) { monitors.remove(token); },
    };
}

ClickMonitor::ClickMonitor(Operations operations)
    : operations_(std::move(operations)), self_(std::make_shared<ClickMonitor*>(this)) {}

ClickMonitor::~ClickMonitor() {
    stop();
}

bool ClickMonitor::start() {
    if (globalMonitor_ && localMonitor_) {
        return true;
    }
    stop();
    installMonitors();
    if (globalMonitor_ && localMonitor_) {
        return true;
    }
    stop();
    return false;
}

void ClickMonitor::installMonitors() {
    const auto report = [weak = std::weak_ptr(self_)](const Event& event) {
        if (const auto self = weak.lock()) {
            (*self)->handle(event);
        }
    };
    globalMonitor_ = operations_.installGlobal(pressMask, report);
    localMonitor_ = operations_.installLocal(pressMask, [report](const Event& event) {
        report(event);
        return std::optional(event);
    });
}

void ClickMonitor::stop() {
    removeMonitor(globalMonitor_);
    removeMonitor(localMonitor_);
}

void ClickMonitor::removeMonitor(std::optional<Token>& monitor) {
    if (monitor) {
        operations_.remove(*std::exchange(monitor, std::nullopt));
    }
}

void ClickMonitor::handle(const Event& event) const {
    if ((maskOf(event.type) & pressMask) != 0 && onClick) {
        onClick(event.type == EventType::rightMouseDown ? MouseButton::right : MouseButton::left,
                pointOf(event));
    }
}

} // namespace vantrel
