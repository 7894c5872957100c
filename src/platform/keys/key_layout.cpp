#include "platform/keys/key_layout.h"

#include "platform/keys/key_table.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <initializer_list>
#include <string_view>
#include <utility>

#include <QChar>

namespace vantrel {

namespace {

constexpr std::uint32_t capsLockBit = 1U << 1U;
constexpr std::uint32_t controlBit = 1U << 2U;
constexpr std::uint32_t allModifiers = 0xFF;

// A dead key types its accent when it is pressed twice.
std::string_view accentOf(xkb_keysym_t symbol) {
    constexpr std::array<std::string_view, 13> accents{"`", "´", "^", "~", "¯", "˘", "˙",
                                                       "¨", "˚", "˝", "ˇ", "¸", "˛"};
    static_assert(XKB_KEY_dead_ogonek - XKB_KEY_dead_grave + 1 == accents.size());
    const auto index = symbol - XKB_KEY_dead_grave;
    return index < accents.size() ? accents[index] : std::string_view();
}

bool isDead(xkb_keysym_t symbol) {
    return symbol >= XKB_KEY_dead_grave && symbol <= XKB_KEY_dead_greek;
}

bool isLatin(xkb_keysym_t symbol) {
    return symbol >= XKB_KEY_space && symbol <= XKB_KEY_ydiaeresis;
}

bool isSeen(std::uint32_t character) {
    return QChar::isPrint(character) && !QChar::isSpace(character);
}

// Also of keys that change the layout.
bool isModifierSymbol(xkb_keysym_t symbol) {
    return (symbol >= XKB_KEY_Shift_L && symbol <= XKB_KEY_Hyper_R) ||
           (symbol >= XKB_KEY_ISO_Lock && symbol <= XKB_KEY_ISO_Level5_Lock) ||
           symbol == XKB_KEY_Mode_switch || symbol == XKB_KEY_Num_Lock ||
           symbol == XKB_KEY_Scroll_Lock;
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

// Of the modifiers that keys with these symbols set.
std::uint32_t bitsSetBy(xkb_keymap& keymap, std::initializer_list<xkb_keysym_t> symbols) {
    std::uint32_t bits = 0;
    for (auto key = xkb_keymap_min_keycode(&keymap); key <= xkb_keymap_max_keycode(&keymap);
         ++key) {
        const std::unique_ptr<xkb_state, Unref<xkb_state_unref>> keys(xkb_state_new(&keymap));
        if (std::ranges::find(symbols, xkb_state_key_get_one_sym(keys.get(), key)) !=
            symbols.end()) {
            xkb_state_update_key(keys.get(), key, XKB_KEY_DOWN);
            bits |= xkb_state_serialize_mods(keys.get(), XKB_STATE_MODS_EFFECTIVE) & allModifiers;
        }
    }
    return bits;
}

std::uint32_t lowestOf(std::uint32_t bits, std::uint32_t otherwise) {
    return bits == 0 ? otherwise : bits & (~bits + 1);
}

} // namespace

ModifierBits ModifierBits::of(xkb_keymap& keymap) {
    ModifierBits bits;
    bits.option = lowestOf(bitsSetBy(keymap, {XKB_KEY_Alt_L, XKB_KEY_Alt_R}), bits.option);
    bits.command = lowestOf(bitsSetBy(keymap, {XKB_KEY_Super_L, XKB_KEY_Super_R}), bits.command);
    bits.locks |= bitsSetBy(keymap, {XKB_KEY_Num_Lock, XKB_KEY_Scroll_Lock});
    bits.locks &= ~(bits.option | bits.command | shiftBit | controlBit);
    return bits;
}

std::optional<std::uint32_t> ModifierBits::stateOf(std::uint32_t modifiers) const {
    const std::array<std::pair<std::uint32_t, std::uint32_t>, 4> bits{{
        {modifier::command, command},
        {modifier::shift, shiftBit},
        {modifier::option, option},
        {modifier::control, controlBit},
    }};
    std::uint32_t state = 0;
    for (const auto& [modifier, bit] : bits) {
        if ((modifiers & modifier) != 0) {
            state |= bit;
            modifiers &= ~modifier;
        }
    }
    return modifiers == 0 ? std::optional(state) : std::nullopt;
}

KeyLayout::KeyLayout(Keymap keymap, ModifierBits modifiers)
    : keymap_(std::move(keymap)), modifiers_(modifiers) {}

std::optional<KeyPress> KeyLayout::press(std::uint32_t key, std::uint32_t modifiers,
                                         std::uint32_t layout) const {
    const auto keyCode = virtualKeyCodeOf(key);
    if (!keyCode) {
        return std::nullopt;
    }
    return KeyPress{*keyCode, flagsOf(modifiers), charactersOf(key, modifiers, layout),
                    nameOfSymbol(plainSymbol(key, layout))};
}

std::string KeyLayout::symbolOf(std::uint32_t key) const {
    const auto symbol = plainSymbol(key, 0);
    return symbol == XKB_KEY_NoSymbol ? std::string() : textOf(symbol);
}

bool KeyLayout::isModifier(std::uint32_t key) const {
    if (!keymap_) {
        return false;
    }
    for (auto layout = xkb_keymap_num_layouts_for_key(keymap_.get(), key); layout-- > 0;) {
        for (auto level = xkb_keymap_num_levels_for_key(keymap_.get(), key, layout); level-- > 0;) {
            const xkb_keysym_t* symbols = nullptr;
            const auto count =
                xkb_keymap_key_get_syms_by_level(keymap_.get(), key, layout, level, &symbols);
            if (std::any_of(symbols, symbols + count, isModifierSymbol)) {
                return true;
            }
        }
    }
    return false;
}

xkb_keysym_t KeyLayout::shortcutSymbol(std::uint32_t key, std::uint32_t modifiers,
                                       std::uint32_t layout, bool numLock) const {
    const auto symbolIn = [&](std::uint32_t each) -> xkb_keysym_t {
        const auto keys = stateWith(modifiers, each, numLock);
        return keys ? xkb_state_key_get_one_sym(keys.get(), key) : XKB_KEY_NoSymbol;
    };
    const auto symbol = symbolIn(layout);
    if (isDead(symbol)) {
        return XKB_KEY_NoSymbol;
    }
    const auto count = keymap_ ? xkb_keymap_num_layouts(keymap_.get()) : 0;
    for (std::uint32_t each = 0; !isLatin(symbol) && each < count; ++each) {
        if (const auto other = symbolIn(each); isLatin(other)) {
            return isIn(other, each, numLock) ? symbol : other;
        }
    }
    return symbol;
}

bool KeyLayout::isIn(xkb_keysym_t symbol, std::uint32_t layoutsBefore, bool numLock) const {
    for (std::uint32_t layout = 0; layout < layoutsBefore; ++layout) {
        const auto keys = stateWith(0, layout, numLock);
        const auto last = keys ? xkb_keymap_max_keycode(keymap_.get()) : 0;
        for (auto key = xkb_keymap_min_keycode(keymap_.get()); key < last; ++key) {
            if (xkb_state_key_get_one_sym(keys.get(), key) == symbol) {
                return true;
            }
        }
    }
    return false;
}

std::uint32_t KeyLayout::layoutWith(xkb_keysym_t symbol, std::uint32_t key,
                                    std::uint32_t modifiers) const {
    const auto count = keymap_ ? xkb_keymap_num_layouts(keymap_.get()) : 0;
    for (std::uint32_t layout = 0; layout < count; ++layout) {
        const State keys(xkb_state_new(keymap_.get()));
        xkb_state_update_mask(keys.get(), modifiers & allModifiers, 0, 0, 0, 0, layout);
        if (xkb_state_key_get_one_sym(keys.get(), key) == symbol) {
            return layout;
        }
    }
    return 0;
}

std::uint32_t KeyLayout::flagsOf(std::uint32_t modifiers) const {
    const std::array<std::pair<std::uint32_t, std::uint32_t>, 4> bits{{
        {shiftBit, keyflag::shift},
        {controlBit, keyflag::control},
        {modifiers_.option, keyflag::option},
        {modifiers_.command, keyflag::command},
    }};
    auto left = modifiers & allModifiers & ~modifiers_.locks;
    std::uint32_t flags = 0;
    for (const auto& [bit, flag] : bits) {
        if ((left & bit) != 0) {
            flags |= flag;
            left &= ~bit;
        }
    }
    return left == 0 ? flags : 0;
}

// Num Lock counts as on unless the caller says otherwise: the keys of the numeric pad are known by
// their digits.
KeyLayout::State KeyLayout::stateWith(std::uint32_t modifiers, std::uint32_t layout,
                                      bool numLock) const {
    State keys(keymap_ ? xkb_state_new(keymap_.get()) : nullptr);
    if (keys) {
        const auto locks = numLock ? modifiers_.locks & ~capsLockBit : 0;
        xkb_state_update_mask(keys.get(), modifiers, 0, locks, 0, 0, layout);
    }
    return keys;
}

std::optional<std::string> KeyLayout::charactersOf(std::uint32_t key, std::uint32_t modifiers,
                                                   std::uint32_t layout) const {
    const auto keys = stateWith(modifiers & shiftBit, layout);
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
xkb_keysym_t KeyLayout::plainSymbol(std::uint32_t key, std::uint32_t layout) const {
    const auto keys = stateWith(0, layout);
    return keys ? xkb_state_key_get_one_sym(keys.get(), key) : XKB_KEY_NoSymbol;
}

} // namespace vantrel
