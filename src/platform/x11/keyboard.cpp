#include "platform/x11/keyboard.h"

#include "platform/x11/key_table.h"
#include "platform/x11/modifier_map.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>
#include <utility>

#include <QChar>
#include <xkbcommon/xkbcommon-x11.h>

namespace vantrel::x11 {

namespace {

template <auto Release>
struct Unref {
    template <typename T>
    void operator()(T* object) const {
        Release(object);
    }
};
using Visit = std::unique_ptr<xcb_connection_t, Unref<xcb_disconnect>>;
using Context = std::unique_ptr<xkb_context, Unref<xkb_context_unref>>;
using Keymap = std::unique_ptr<xkb_keymap, Unref<xkb_keymap_unref>>;
using State = std::unique_ptr<xkb_state, Unref<xkb_state_unref>>;

// Null when the server lacks the extension that tells it. Over a connection of its own: once the
// extension is in use, a connection hears no more of changed mappings in the way in which all
// others do.
Keymap readKeymap(const std::string& displayName) {
    const Visit visit(xcb_connect(displayName.empty() ? nullptr : displayName.c_str(), nullptr));
    auto* connection = visit.get();
    const Context context(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES));
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

// A dead key types its accent when it is pressed twice.
std::string_view accentOf(xkb_keysym_t symbol) {
    constexpr std::array<std::string_view, 13> accents{"`", "´", "^", "~", "¯", "˘", "˙",
                                                       "¨", "˚", "˝", "ˇ", "¸", "˛"};
    static_assert(XKB_KEY_dead_ogonek - XKB_KEY_dead_grave + 1 == accents.size());
    const auto index = symbol - XKB_KEY_dead_grave;
    return index < accents.size() ? accents[index] : std::string_view();
}

bool isSeen(std::uint32_t character) {
    return QChar::isPrint(character) && !QChar::isSpace(character);
}

std::string textOf(xkb_keysym_t symbol) {
    std::array<char, 64> text{};
    xkb_keysym_get_name(symbol, text.data(), text.size());
    return text.data();
}

// A key is called by what is written on it, not by what it was on the first terminals.
std::string nameOfSymbol(xkb_keysym_t symbol) {
    if (symbol == XKB_KEY_NoSymbol) {
        return {};
    }
    if (symbol == XKB_KEY_Page_Up || symbol == XKB_KEY_Page_Down) {
        return symbol == XKB_KEY_Page_Up ? "Page_Up" : "Page_Down";
    }
    auto text = textOf(symbol);
    text.front() = static_cast<char>(std::toupper(text.front()));
    return text;
}

// Also of keys that change the layout.
bool isModifierSymbol(xkb_keysym_t symbol) {
    return (symbol >= XKB_KEY_Shift_L && symbol <= XKB_KEY_Hyper_R) ||
           (symbol >= XKB_KEY_ISO_Lock && symbol <= XKB_KEY_ISO_Level5_Lock) ||
           symbol == XKB_KEY_Mode_switch || symbol == XKB_KEY_Num_Lock ||
           symbol == XKB_KEY_Scroll_Lock;
}

} // namespace

class X11Keyboard::Layout {
public:
    explicit Layout(const Connection& connection)
        : modifiers_(ModifierMap::read(connection)),
          keymap_(readKeymap(connection.displayName())) {}

    [[nodiscard]] std::uint32_t flagsOf(std::uint32_t state) const;
    [[nodiscard]] std::optional<std::string> charactersOf(std::uint32_t key,
                                                          std::uint32_t state) const;
    [[nodiscard]] xkb_keysym_t symbolOf(std::uint32_t key, std::uint32_t state) const;
    [[nodiscard]] bool isModifier(std::uint32_t key) const;

private:
    [[nodiscard]] State stateWith(std::uint32_t shift, std::uint32_t group) const;

    ModifierMap modifiers_;
    Keymap keymap_;
};

std::uint32_t X11Keyboard::Layout::flagsOf(std::uint32_t state) const {
    const std::array<std::pair<std::uint32_t, std::uint32_t>, 4> bits{{
        {XCB_MOD_MASK_SHIFT, keyflag::shift},
        {XCB_MOD_MASK_CONTROL, keyflag::control},
        {modifiers_.option, keyflag::option},
        {modifiers_.command, keyflag::command},
    }};
    constexpr std::uint32_t allModifiers = 0xFF;
    auto left = state & allModifiers & ~modifiers_.locks;
    std::uint32_t flags = 0;
    for (const auto& [bit, flag] : bits) {
        if ((left & bit) != 0) {
            flags |= flag;
            left &= ~bit;
        }
    }
    return left == 0 ? flags : 0;
}

// Num Lock is always on: the keys of the numeric pad are known by their digits.
State X11Keyboard::Layout::stateWith(std::uint32_t shift, std::uint32_t group) const {
    State keys(keymap_ ? xkb_state_new(keymap_.get()) : nullptr);
    if (keys) {
        const auto numLock = modifiers_.locks & ~std::uint32_t{XCB_MOD_MASK_LOCK};
        xkb_state_update_mask(keys.get(), shift, 0, numLock, 0, 0, group);
    }
    return keys;
}

std::optional<std::string> X11Keyboard::Layout::charactersOf(std::uint32_t key,
                                                             std::uint32_t state) const {
    const auto keys = stateWith(state & XCB_MOD_MASK_SHIFT, groupOf(state));
    if (!keys) {
        return std::nullopt;
    }
    const auto accent = accentOf(xkb_state_key_get_one_sym(keys.get(), key));
    if (!accent.empty()) {
        return std::string(accent);
    }
    std::array<char, 64> text{};
    const auto length = xkb_state_key_get_utf8(keys.get(), key, text.data(), text.size());
    if (length <= 0 || static_cast<std::size_t>(length) >= text.size() ||
        !isSeen(xkb_state_key_get_utf32(keys.get(), key))) {
        return std::nullopt;
    }
    return std::string(text.data(), static_cast<std::size_t>(length));
}

// Without Shift, with which Tab would be something else.
xkb_keysym_t X11Keyboard::Layout::symbolOf(std::uint32_t key, std::uint32_t state) const {
    const auto keys = stateWith(0, groupOf(state));
    return keys ? xkb_state_key_get_one_sym(keys.get(), key) : XKB_KEY_NoSymbol;
}

bool X11Keyboard::Layout::isModifier(std::uint32_t key) const {
    if (!keymap_) {
        return false;
    }
    for (auto group = xkb_keymap_num_layouts_for_key(keymap_.get(), key); group-- > 0;) {
        for (auto level = xkb_keymap_num_levels_for_key(keymap_.get(), key, group); level-- > 0;) {
            const xkb_keysym_t* symbols = nullptr;
            const auto count =
                xkb_keymap_key_get_syms_by_level(keymap_.get(), key, group, level, &symbols);
            if (std::any_of(symbols, symbols + count, isModifierSymbol)) {
                return true;
            }
        }
    }
    return false;
}

X11Keyboard::X11Keyboard(Connection& connection)
    : connection_(connection), events_(connection.addHandler(*this)) {}

X11Keyboard::~X11Keyboard() = default;

std::optional<KeyPress> X11Keyboard::press(std::uint32_t key, std::uint32_t state) const {
    const auto keyCode = virtualKeyCodeOf(key);
    if (!keyCode) {
        return std::nullopt;
    }
    return KeyPress{*keyCode, layout().flagsOf(state), layout().charactersOf(key, state),
                    nameOfSymbol(layout().symbolOf(key, state))};
}

std::string X11Keyboard::symbolOf(std::uint32_t key) const {
    const auto symbol = layout().symbolOf(key, 0);
    return symbol == XKB_KEY_NoSymbol ? std::string() : textOf(symbol);
}

bool X11Keyboard::isModifier(std::uint32_t key) const {
    return layout().isModifier(key);
}

const X11Keyboard::Layout& X11Keyboard::layout() const {
    if (!layout_) {
        layout_ = std::make_unique<Layout>(connection_);
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
