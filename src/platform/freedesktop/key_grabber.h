#pragma once

#include "platform/subscription.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace vantrel {

// A key by its number on this keyboard, with modifiers as of hot keys.
struct KeyCombination {
    std::uint8_t keycode = 0;
    std::uint32_t modifiers = 0;

    bool operator==(const KeyCombination&) const = default;
};

struct KeyGrab {
    std::uint32_t number = 0; // of the caller's choice
    KeyCombination keys{};

    bool operator==(const KeyGrab&) const = default;
};

// What takes key combinations in the whole session, in its own time.
class KeyGrabber {
public:
    virtual ~KeyGrabber() = default;

    [[nodiscard]] virtual bool takesKeys() const = 0;
    // Also when those that were refused may be had.
    [[nodiscard]] virtual Subscription onKeysChange(std::function<void()> callback) = 0;
    // All of them, in place of earlier ones.
    virtual void grab(const std::vector<KeyGrab>& grabs) = 0;
    // As of hot keys.
    virtual void leaveKeys(bool left) = 0;
    [[nodiscard]] virtual bool canLeaveKeys() const = 0;

    // Those that cannot be had.
    std::function<void(const std::vector<std::uint32_t>& numbers)> onRefused;
    std::function<void(std::uint32_t number)> onPressed;
};

} // namespace vantrel
