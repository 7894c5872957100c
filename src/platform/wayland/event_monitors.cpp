#include "platform/wayland/event_monitors.h"

#include <algorithm>
#include <utility>

namespace vantrel::wayland {

namespace {

constexpr EventMask motionMask =
    maskOf(EventType::mouseMoved) | maskOf(EventType::leftMouseDragged) |
    maskOf(EventType::rightMouseDragged) | maskOf(EventType::otherMouseDragged);

} // namespace

WaylandEventMonitors::WaylandEventMonitors(Connection& connection, WaylandPointer& pointer)
    : pointer_(pointer), events_(connection.addHandler(*this)) {}

std::optional<EventMonitors::Token> WaylandEventMonitors::addGlobal(EventMask mask,
                                                                    GlobalHandler handler) {
    if ((mask & ~motionMask) != 0) {
        return std::nullopt;
    }
    monitors_.push_back({++lastToken_, std::move(handler)});
    pointer_.watch(true);
    return lastToken_;
}

std::optional<EventMonitors::Token> WaylandEventMonitors::addLocal(EventMask mask,
                                                                   LocalHandler /*handler*/) {
    return (mask & ~motionMask) == 0 ? std::optional(++lastToken_) : std::nullopt;
}

void WaylandEventMonitors::remove(Token token) {
    const auto monitor = std::ranges::find(monitors_, token, &Monitor::token);
    if (monitor == monitors_.end()) {
        return;
    }
    monitor->token = 0;
    if (!sending_) {
        eraseRemoved();
    }
}

void WaylandEventMonitors::eraseRemoved() {
    if (std::erase_if(monitors_, [](const auto& monitor) { return monitor.token == 0; }) > 0) {
        pointer_.watch(!monitors_.empty());
    }
}

void WaylandEventMonitors::eventsDrained() {
    const auto place = pointer_.location();
    if (std::exchange(lastPlace_, place) == place) {
        return;
    }
    const auto [x, y] = place.value_or(GlobalPoint());
    const Event event{.type = EventType::mouseMoved, .locationInWindow = {x, y}};
    sending_ = true;
    // A monitor that is added meanwhile hears of the next event.
    for (const auto last = lastToken_; const auto& monitor : monitors_) {
        if (monitor.token != 0 && monitor.token <= last) {
            monitor.handler(event);
        }
    }
    sending_ = false;
    eraseRemoved();
}

} // namespace vantrel::wayland
