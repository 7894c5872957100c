#include "platform/wayland/keyboard.h"

#include "platform/wayland/listener.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>

namespace vantrel::wayland {

namespace {

constexpr std::chrono::milliseconds keymapTimeout(500);

Keymap compiled(const std::string& text) {
    const KeyContext context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    if (!context) {
        return nullptr;
    }
    return Keymap(
        text.empty()
            ? xkb_keymap_new_from_names(context.get(), nullptr, XKB_KEYMAP_COMPILE_NO_FLAGS)
            : xkb_keymap_new_from_string(context.get(), text.c_str(), XKB_KEYMAP_FORMAT_TEXT_V1,
                                         XKB_KEYMAP_COMPILE_NO_FLAGS));
}

} // namespace

WaylandKeyboard::WaylandKeyboard(Connection& connection) : events_(connection.addHandler(*this)) {
    const auto& globals = connection.globals();
    const auto found = std::ranges::find(globals, wl_seat_interface.name, &Global::interface);
    if (found == globals.end()) {
        return;
    }
    static constexpr wl_seat_listener listener{
        .capabilities = relay<&WaylandKeyboard::noteCapabilities, wl_seat>,
        .name = ignored,
    };
    seat_.reset(static_cast<wl_seat*>(connection.bind(*found, wl_seat_interface, 3)));
    wl_seat_add_listener(seat_.get(), &listener, this);
    if (connection.roundTrip(keymapTimeout) && keyboard_) {
        connection.roundTrip(keymapTimeout);
    }
}

WaylandKeyboard::~WaylandKeyboard() = default;

// In which layout a key was pressed, only the window is told that gets it.
std::optional<KeyPress> WaylandKeyboard::press(const KeyEvent& event) const {
    return layout().press(event.key, event.state,
                          layout().layoutWith(event.symbol, event.key, event.state));
}

const KeyLayout& WaylandKeyboard::layout() const {
    if (!layout_) {
        auto keymap = compiled(keymap_);
        const auto modifiers = keymap ? ModifierBits::of(*keymap) : ModifierBits();
        layout_ = std::make_unique<KeyLayout>(std::move(keymap), modifiers);
    }
    return *layout_;
}

void WaylandKeyboard::eventsDrained() {
    if (std::exchange(hasChanged_, false)) {
        changes.notify();
    }
}

void WaylandKeyboard::noteCapabilities(std::uint32_t capabilities) {
    const bool hasKeyboard = (capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0;
    if (hasKeyboard == (keyboard_ != nullptr)) {
        return;
    }
    keyboard_.reset(hasKeyboard ? wl_seat_get_keyboard(seat_.get()) : nullptr);
    if (keyboard_) {
        static constexpr wl_keyboard_listener listener{
            .keymap = relay<&WaylandKeyboard::takeKeymap, wl_keyboard>,
            .enter = ignored,
            .leave = ignored,
            .key = ignored,
            .modifiers = ignored,
            .repeat_info = ignored,
        };
        wl_keyboard_add_listener(keyboard_.get(), &listener, this);
    }
}

void WaylandKeyboard::takeKeymap(std::uint32_t format, std::int32_t descriptor,
                                 std::uint32_t size) {
    void* memory = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    close(descriptor);
    if (memory == MAP_FAILED) {
        return;
    }
    if (format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1 && size > 0) {
        keymap_.assign(static_cast<const char*>(memory), size - 1);
        layout_.reset();
        hasChanged_ = true;
    }
    munmap(memory, size);
}

} // namespace vantrel::wayland
