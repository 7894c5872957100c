#pragma once

#include "platform/keys/keymap_keyboard.h"
#include "platform/x11/connection.h"

#include <memory>

namespace vantrel::x11 {

// With the state word of a key event: modifiers, and the group of the layout.
class X11Keyboard final : public KeymapKeyboard, private EventHandler {
public:
    explicit X11Keyboard(Connection& connection);

    [[nodiscard]] std::optional<KeyPress> press(const KeyEvent& event) const override;

private:
    void handleEvent(const xcb_generic_event_t& event) override;
    void eventsDrained() override;
    const KeyLayout& layout() const override;

    Connection& connection_;
    // Read when it is asked for, dropped when it changes.
    mutable std::unique_ptr<KeyLayout> layout_;
    bool hasChanged_ = false;
    Subscription events_;
};

} // namespace vantrel::x11
