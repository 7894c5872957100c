#include "platform/x11/keyboard.h"

#include "platform/x11/modifier_map.h"

#include <utility>

#include <xkbcommon/xkbcommon-x11.h>

namespace vantrel::x11 {

namespace {

using Visit = std::unique_ptr<xcb_connection_t, Unref<xcb_disconnect>>;

// Null when the server lacks the extension that tells it. Over a connection of its own: once the
// extension is in use, a connection hears no more of changed mappings in the way in which all
// others do.
Keymap readKeymap(const std::string& displayName) {
    const Visit visit(xcb_connect(displayName.empty() ? nullptr : displayName.c_str(), nullptr));
    auto* connection = visit.get();
    const KeyContext context(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES));
    if (xcb_connection_has_error(connection) != 0 || !context ||
        xkb_x11_setup_xkb_extension(
            connection, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
            XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr, nullptr) == 0) {
        return nullptr;
    }
    const auto device = xkb_x11_get_core_keyboard_device_id(connection);
    return Keymap(device < 0 ? nullptr
                             : xkb_x11_keymap_new_from_device(context.get(), connection, device,
                                                              XKB_KEYMAP_COMPILE_NO_FLAGS));
}

std::uint32_t groupOf(std::uint32_t state) {
    return (state >> 13U) & 3U;
}

} // namespace

X11Keyboard::X11Keyboard(Connection& connection)
    : connection_(connection), events_(connection.addHandler(*this)) {}

std::optional<KeyPress> X11Keyboard::press(const KeyEvent& event) const {
    return layout().press(event.key, event.state, groupOf(event.state));
}

const KeyLayout& X11Keyboard::layout() const {
    if (!layout_) {
        layout_ = std::make_unique<KeyLayout>(readKeymap(connection_.displayName()),
                                              ModifierMap::read(connection_));
    }
    return *layout_;
}

void X11Keyboard::handleEvent(const xcb_generic_event_t& event) {
    if (eventNumber(event) == XCB_MAPPING_NOTIFY) {
        layout_.reset();
        hasChanged_ = true;
    }
}

void X11Keyboard::eventsDrained() {
    if (std::exchange(hasChanged_, false)) {
        changes.notify();
    }
}

} // namespace vantrel::x11
