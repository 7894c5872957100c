#pragma once

#include "testdesk/x_connection.h"

#include <cstdint>

namespace vantrel::desktop {

enum class Button : std::uint8_t { left = 1, middle = 2, right = 3 };

// Moves the pointer and presses buttons and keys as a device would. Every call has been carried out
// by the server when it returns, except motion that asks not to wait.
class SyntheticInput {
public:
    enum class Wait { forServer, no };

    explicit SyntheticInput(const std::string& display) : connection_(display) {}
    ~SyntheticInput();
    SyntheticInput(const SyntheticInput&) = delete;
    SyntheticInput& operator=(const SyntheticInput&) = delete;

    void moveTo(PixelPoint place, Wait wait = Wait::forServer);
    void press(Button button);
    void release(Button button);
    void click(Button button = Button::left);

    // Keys by their symbol, such as 'h' or 0xFFE3 for the left Control key; throws when the
    // keyboard has no such key.
    void pressKey(std::uint32_t keysym);
    void releaseKey(std::uint32_t keysym);
    // All down in order, all up in the opposite order.
    void typeChord(const std::vector<std::uint32_t>& keysyms);

private:
    void fake(std::uint8_t type, std::uint8_t detail, PixelPoint place, Wait wait);
    [[nodiscard]] std::uint8_t keycodeOf(std::uint32_t keysym) const;

    XConnection connection_;
    std::vector<std::uint8_t> heldButtons_;
    std::vector<std::uint8_t> heldKeys_;
};

} // namespace vantrel::desktop
