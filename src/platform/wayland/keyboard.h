#pragma once

#include "platform/keys/keymap_keyboard.h"
#include "platform/wayland/connection.h"

#include <memory>
#include <string>

namespace vantrel::wayland {

// The keyboard of the first seat, by the keymap that the compositor tells also those who get no key
// of it. Without a keyboard it is the system's usual keymap.
class WaylandKeyboard final : public KeymapKeyboard, private BatchHandler {
public:
    // Waits for the keymap, but not for long.
    explicit WaylandKeyboard(Connection& connection);
    ~WaylandKeyboard() override;
    WaylandKeyboard(const WaylandKeyboard&) = delete;
    WaylandKeyboard& operator=(const WaylandKeyboard&) = delete;

    [[nodiscard]] std::optional<KeyPress> press(const KeyEvent& event) const override;

private:
    [[nodiscard]] const KeyLayout& layout() const override;
    void eventsDrained() override;
    void noteCapabilities(std::uint32_t capabilities);
    void takeKeymap(std::uint32_t format, std::int32_t descriptor, std::uint32_t size);

    Handle<wl_seat> seat_;
    Handle<wl_keyboard> keyboard_;
    std::string keymap_;
    mutable std::unique_ptr<KeyLayout> layout_; // made when it is asked for
    bool hasChanged_ = false;
    Subscription events_;
};

} // namespace vantrel::wayland
