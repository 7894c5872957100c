#pragma once

#include "platform/geometry.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

// The pointer, the buttons and the keys.

namespace vantrel {

// The mouse pointer.
class Pointer {
public:
    virtual ~Pointer() = default;

    // Where its hot spot is now, asked anew in each turn of the event loop; the last known place
    // when the desktop does not answer, and nothing when it does not know itself.
    [[nodiscard]] virtual std::optional<GlobalPoint> location() = 0;
};

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

// Modifier flags of a key event; other bits of a flag word mean nothing here.
namespace keyflag {
inline constexpr std::uint32_t shift = 0x20000;
inline constexpr std::uint32_t control = 0x40000;
inline constexpr std::uint32_t option = 0x80000;
inline constexpr std::uint32_t command = 0x100000;
} // namespace keyflag

// A key press, by where the key lies and by what it produces.
struct KeyPress {
    std::uint16_t keyCode = 0;       // virtual key code: a position, whatever the layout
    std::uint32_t modifierFlags = 0; // keyflag bits
    // UTF-8: what the key produces with no modifier but Shift; absent when it produces nothing.
    // None of the characters that nobody sees, such as a space.
    std::optional<std::string> charactersIgnoringModifiers;
    std::string
        name{}; // of a key without such characters, for example "F5"; empty when it has none

    bool operator==(const KeyPress&) const = default;
};

// A key press as the desktop numbers it.
struct KeyEvent {
    std::uint32_t key = 0;
    std::uint32_t state = 0;  // of modifiers, and of the layout where the desktop has it there
    std::uint32_t symbol = 0; // what it produces in that state
};

// What the keys of the keyboard stand for.
class Keyboard {
public:
    virtual ~Keyboard() = default;

    // Nothing for keys that no shortcut can be made of.
    [[nodiscard]] virtual std::optional<KeyPress> press(const KeyEvent& event) const = 0;
    // Whether the key is held for the sake of others, such as Shift and Caps Lock.
    [[nodiscard]] virtual bool isModifier(std::uint32_t key) const = 0;
};

// Modifier keys of a combination, as bits. The values are those of stored shortcuts.
namespace modifier {
inline constexpr std::uint32_t command = 0x100;
inline constexpr std::uint32_t shift = 0x200;
inline constexpr std::uint32_t option = 0x800;
inline constexpr std::uint32_t control = 0x1000;
} // namespace modifier

// The identity that a registration carries and a press reports.
struct HotKeyId {
    std::uint32_t signature = 0;
    std::uint32_t id = 0;

    bool operator==(const HotKeyId&) const = default;
};

// Key combinations that are seen in every application and consumed. Keys are virtual key codes,
// modifiers those above.
class HotKeys {
public:
    using Ref = std::uint64_t;

    virtual ~HotKeys() = default;

    // One handler for all; an empty one removes it. Called once for each press, not for repeats.
    virtual void setHandler(std::function<void(HotKeyId)> handler) = 0;
    // Called when a registered combination was lost, as to a new keyboard mapping, and some times
    // afterwards: whoever registers all of them again has what can be had.
    virtual void setLossHandler(std::function<void()> handler) = 0;
    // No reference when the combination cannot be had: another program holds it, or no key of this
    // keyboard has the code.
    [[nodiscard]] virtual std::optional<Ref> register_(std::uint32_t keyCode,
                                                       std::uint32_t modifiers, HotKeyId id) = 0;
    virtual void unregister(Ref ref) = 0;
    // Whether the keys of all combinations, whoever takes them otherwise, go to the window that has
    // the keyboard; as far as the desktop can do that.
    virtual void leaveKeys(bool left) = 0;
    // Whether that is so of all, so that none is out of reach of whoever records one.
    [[nodiscard]] virtual bool canLeaveKeys() const = 0;
};

} // namespace vantrel
