#pragma once

#include "platform/input.h"
#include "platform/x11/connection.h"

#include <memory>
#include <string>

namespace vantrel::x11 {

// Of a key event without modifiers, in that layout of several, from 0.
constexpr std::uint32_t stateOfLayout(std::uint32_t layout) {
    return layout << 13U;
}

// Keys by keycode, with the state word of a key event: modifiers, and the group of the layout.
//
// Alt is Option and Super is Command, on either side of the keyboard. AltGr, and other modifiers
// that no shortcut can have, leave a press without any flag, so that it is not taken for the
// shortcut that it would be without them.
class X11Keyboard final : public Keyboard, private EventHandler {
public:
    explicit X11Keyboard(Connection& connection);
    ~X11Keyboard() override;
    X11Keyboard(const X11Keyboard&) = delete;
    X11Keyboard& operator=(const X11Keyboard&) = delete;

    [[nodiscard]] std::optional<KeyPress> press(std::uint32_t key,
                                                std::uint32_t state) const override;
    [[nodiscard]] bool isModifier(std::uint32_t key) const override;

    // What the key produces without modifiers, as keymaps call it; empty where it produces nothing.
    [[nodiscard]] std::string symbolOf(std::uint32_t key) const;

    // Called when keys have got another meaning.
    Observers<> changes;

private:
    class Layout;

    void handleEvent(const xcb_generic_event_t& event) override;
    void eventsDrained() override;
    const Layout& layout() const;

    Connection& connection_;
    mutable std::unique_ptr<Layout> layout_; // read when it is asked for, dropped when it changes
    bool hasChanged_ = false;
    Subscription events_;
};

} // namespace vantrel::x11
