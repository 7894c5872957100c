#include "platform/x11/modifier_map.h"

#include "platform/input.h"

#include <algorithm>
#include <span>

#include <X11/keysym.h>

namespace vantrel::x11 {

namespace {

constexpr unsigned modifierCount = 8;

struct KeyboardMapping {
    xcb_keycode_t firstKeycode;
    std::size_t symbolsPerKey;
    std::span<const xcb_keysym_t> symbols;

    [[nodiscard]] std::span<const xcb_keysym_t> symbolsOf(xcb_keycode_t keycode) const {
        if (keycode < firstKeycode) {
            return {};
        }
        const auto begin = static_cast<std::size_t>(keycode - firstKeycode) * symbolsPerKey;
        return begin < symbols.size() ? symbols.subspan(begin, symbolsPerKey)
                                      : std::span<const xcb_keysym_t>();
    }
};

// For each symbol, the bits of the modifiers that a key with the symbol sets.
class SymbolModifiers {
public:
    SymbolModifiers(const KeyboardMapping& mapping, std::span<const xcb_keycode_t> modifierKeys)
        : mapping_(mapping), keys_(modifierKeys) {}

    [[nodiscard]] std::uint32_t bitsOf(xcb_keysym_t symbol) const {
        std::uint32_t bits = 0;
        const auto keysPerModifier = keys_.size() / modifierCount;
        for (std::size_t i = 0; i < keys_.size(); ++i) {
            const auto symbols = mapping_.symbolsOf(keys_[i]);
            if (std::ranges::find(symbols, symbol) != symbols.end()) {
                bits |= 1U << (i / keysPerModifier);
            }
        }
        return bits;
    }

    [[nodiscard]] std::uint32_t lowestBitOf(xcb_keysym_t left, xcb_keysym_t right,
                                            std::uint32_t otherwise) const {
        const auto bits = bitsOf(left) | bitsOf(right);
        return bits == 0 ? otherwise : bits & (~bits + 1);
    }

private:
    KeyboardMapping mapping_;
    std::span<const xcb_keycode_t> keys_;
};

} // namespace

ModifierMap ModifierMap::read(const Connection& connection) {
    auto* xcb = connection.xcb();
    const auto* setup = xcb_get_setup(xcb);
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto modifiersCookie = xcb_get_modifier_mapping(xcb);
    const auto symbolsCookie = xcb_get_keyboard_mapping(xcb, setup->min_keycode, count);
    const Owned<xcb_get_modifier_mapping_reply_t> modifiers(
        xcb_get_modifier_mapping_reply(xcb, modifiersCookie, nullptr));
    const Owned<xcb_get_keyboard_mapping_reply_t> symbols(
        xcb_get_keyboard_mapping_reply(xcb, symbolsCookie, nullptr));
    ModifierMap map;
    if (!modifiers || !symbols) {
        return map;
    }
    const KeyboardMapping mapping{
        setup->min_keycode,
        symbols->keysyms_per_keycode,
        {xcb_get_keyboard_mapping_keysyms(symbols.get()),
         static_cast<std::size_t>(xcb_get_keyboard_mapping_keysyms_length(symbols.get()))}};
    const SymbolModifiers of(
        mapping,
        {xcb_get_modifier_mapping_keycodes(modifiers.get()),
         static_cast<std::size_t>(xcb_get_modifier_mapping_keycodes_length(modifiers.get()))});
    map.option = of.lowestBitOf(XK_Alt_L, XK_Alt_R, map.option);
    map.command = of.lowestBitOf(XK_Super_L, XK_Super_R, map.command);
    map.locks |= of.bitsOf(XK_Num_Lock) | of.bitsOf(XK_Scroll_Lock);
    // One that shares its bit with a modifier cannot be told from it.
    map.locks &= ~(map.option | map.command | XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL);
    return map;
}

} // namespace vantrel::x11
