#include "platform/wayland/event_monitors.h"

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
    const auto token = monitors_.add(mask, std::move(handler));
    pointer_.watch(true);
    return token;
}

std::optional<EventMonitors::Token> WaylandEventMonitors::addLocal(EventMask mask,
                                                                   LocalHandler /*handler*/) {
    return (mask & ~motionMask) == 0 ? std::optional(monitors_.addDeaf()) : std::nullopt;
}

void WaylandEventMonitors::remove(Token token) {
    monitors_.remove(token);
    pointer_.watch(monitors_.mask() != 0);
}

void WaylandEventMonitors::eventsDrained() {
    const auto place = pointer_.location();
    if (std::exchange(lastPlace_, place) == place) {
        return;
    }
    const auto [x, y] = place.value_or(GlobalPoint());
    monitors_.send({.type = EventType::mouseMoved, .locationInWindow = {x, y}});
}

} // namespace vantrel::wayland
