#pragma once

#include "platform/x11/connection.h"

#include <cstdint>
#include <optional>

namespace vantrel::x11 {

// A key with exactly these modifiers held, whichever locks are on.
struct KeyCombination {
    xcb_keycode_t keycode = 0;
    std::uint32_t state = 0; // bits of the modifiers

    bool operator==(const KeyCombination&) const = default;
};

// Keeps a combination for this program alone: its presses come here as XInput events and reach
// nobody else. Ends when it is destroyed. The connection must outlive it.
class KeyGrab {
public:
    // Nothing when another program has the combination, with any of the locks. One round trip.
    static std::optional<KeyGrab> take(const Connection& connection, KeyCombination combination,
                                       std::uint32_t locks);
    ~KeyGrab();
    KeyGrab(KeyGrab&& other) noexcept;
    KeyGrab& operator=(KeyGrab&& other) noexcept;
    KeyGrab(const KeyGrab&) = delete;
    KeyGrab& operator=(const KeyGrab&) = delete;

private:
    KeyGrab(const Connection& connection, KeyCombination combination, std::uint32_t locks)
        : connection_(&connection), combination_(combination), locks_(locks) {}

    bool grab() const;
    void release();

    const Connection* connection_; // null once it was moved from
    KeyCombination combination_;
    std::uint32_t locks_;
};

} // namespace vantrel::x11
