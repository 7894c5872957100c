#pragma once

#include "platform/geometry.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace vantrel {

enum class EventType : std::uint8_t {
    leftMouseDown = 1,
    leftMouseUp = 2,
    rightMouseDown = 3,
    rightMouseUp = 4,
    mouseMoved = 5,
    leftMouseDragged = 6,
    rightMouseDragged = 7,
    otherMouseDown = 25,
    otherMouseUp = 26,
    otherMouseDragged = 27,
};

// The buttons that clicks are shown of.
enum class MouseButton : std::uint8_t { left, right };

// One bit for each event type, at the type's number.
using EventMask = std::uint32_t;

constexpr EventMask maskOf(EventType type) {
    return EventMask{1} << static_cast<unsigned>(type);
}

// A window of this application, as far as events need it.
class EventWindow {
public:
    virtual ~EventWindow() = default;

    [[nodiscard]] virtual GlobalPoint convertPointToScreen(Point point) const = 0;
};

struct Event {
    EventType type = EventType::mouseMoved;
    // In the window's coordinates when there is one, otherwise a point of the desktop.
    Point locationInWindow;
    const EventWindow* window = nullptr;
};

// Watches events without taking them from anyone. Every event is seen by exactly one of the two
// kinds: the local monitors see those that go to this application, the global ones all others.
class EventMonitors {
public:
    // Opaque; only handed back to remove().
    using Token = std::uint64_t;
    using GlobalHandler = std::function<void(const Event&)>;
    // What it returns is what the application's own window receives.
    using LocalHandler = std::function<std::optional<Event>(const Event&)>;

    virtual ~EventMonitors() = default;

    // No token when the desktop refuses.
    [[nodiscard]] virtual std::optional<Token> addGlobal(EventMask mask, GlobalHandler handler) = 0;
    [[nodiscard]] virtual std::optional<Token> addLocal(EventMask mask, LocalHandler handler) = 0;
    virtual void remove(Token token) = 0;
};

} // namespace vantrel
