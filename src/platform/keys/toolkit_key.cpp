#include "platform/keys/toolkit_key.h"

#include <algorithm>
#include <array>

#include <QChar>

namespace vantrel {

namespace {

constexpr int shift = static_cast<int>(Qt::ShiftModifier);
constexpr int onPad = static_cast<int>(Qt::KeypadModifier);

// The toolkit has a key of the numeric pad under the name of the one that does the same.
xkb_keysym_t withoutPad(xkb_keysym_t symbol) {
    struct Twin {
        xkb_keysym_t onPad;
        xkb_keysym_t other;
    };
    constexpr std::array twins = std::to_array<Twin>({
        {XKB_KEY_KP_Home, XKB_KEY_Home},
        {XKB_KEY_KP_Left, XKB_KEY_Left},
        {XKB_KEY_KP_Up, XKB_KEY_Up},
        {XKB_KEY_KP_Right, XKB_KEY_Right},
        {XKB_KEY_KP_Down, XKB_KEY_Down},
        {XKB_KEY_KP_Page_Up, XKB_KEY_Page_Up},
        {XKB_KEY_KP_Page_Down, XKB_KEY_Page_Down},
        {XKB_KEY_KP_End, XKB_KEY_End},
        {XKB_KEY_KP_Begin, XKB_KEY_Clear},
        {XKB_KEY_KP_Insert, XKB_KEY_Insert},
        {XKB_KEY_KP_Delete, XKB_KEY_Delete},
    });
    const auto* twin = std::ranges::find(twins, symbol, &Twin::onPad);
    return twin == twins.end() ? symbol : twin->other;
}

int namedKeyOf(xkb_keysym_t symbol) {
    struct Name {
        xkb_keysym_t symbol;
        Qt::Key key;
    };
    constexpr std::array names = std::to_array<Name>({
        {XKB_KEY_Escape, Qt::Key_Escape},
        {XKB_KEY_Tab, Qt::Key_Tab},
        {XKB_KEY_BackSpace, Qt::Key_Backspace},
        {XKB_KEY_Return, Qt::Key_Return},
        {XKB_KEY_KP_Enter, Qt::Key_Enter},
        {XKB_KEY_Insert, Qt::Key_Insert},
        {XKB_KEY_Delete, Qt::Key_Delete},
        {XKB_KEY_Clear, Qt::Key_Clear},
        {XKB_KEY_Home, Qt::Key_Home},
        {XKB_KEY_End, Qt::Key_End},
        {XKB_KEY_Left, Qt::Key_Left},
        {XKB_KEY_Up, Qt::Key_Up},
        {XKB_KEY_Right, Qt::Key_Right},
        {XKB_KEY_Down, Qt::Key_Down},
        {XKB_KEY_Page_Up, Qt::Key_PageUp},
        {XKB_KEY_Page_Down, Qt::Key_PageDown},
        {XKB_KEY_Menu, Qt::Key_Menu},
        {XKB_KEY_Print, Qt::Key_Print},
        {XKB_KEY_Pause, Qt::Key_Pause},
        {XKB_KEY_XF86AudioRaiseVolume, Qt::Key_VolumeUp},
        {XKB_KEY_XF86AudioLowerVolume, Qt::Key_VolumeDown},
        {XKB_KEY_XF86AudioMute, Qt::Key_VolumeMute},
        // As keymaps have F13 to F18 and F20.
        {XKB_KEY_XF86Tools, Qt::Key_Tools},
        {XKB_KEY_XF86Launch5, Qt::Key_Launch7},
        {XKB_KEY_XF86Launch6, Qt::Key_Launch8},
        {XKB_KEY_XF86Launch7, Qt::Key_Launch9},
        {XKB_KEY_XF86Launch8, Qt::Key_LaunchA},
        {XKB_KEY_XF86Launch9, Qt::Key_LaunchB},
        {XKB_KEY_XF86AudioMicMute, Qt::Key_MicMute},
        {XKB_KEY_Hangul, Qt::Key_Hangul},
        {XKB_KEY_Hangul_Hanja, Qt::Key_Hangul_Hanja},
    });
    const auto* name = std::ranges::find(names, symbol, &Name::symbol);
    return name == names.end() ? 0 : name->key;
}

// Zero without a name.
int keyOf(xkb_keysym_t symbol) {
    if (symbol >= XKB_KEY_F1 && symbol <= XKB_KEY_F35) {
        return Qt::Key_F1 + static_cast<int>(symbol - XKB_KEY_F1);
    }
    const int pad = symbol >= XKB_KEY_KP_Space && symbol <= XKB_KEY_KP_Equal ? onPad : 0;
    int key = namedKeyOf(withoutPad(symbol));
    if (key == 0) {
        const auto character = xkb_keysym_to_utf32(symbol);
        const auto capital = QChar::toUpper(character);
        // Of two letters of Latin-1 it lies beyond.
        const bool hasCapital = capital <= 0xff || character > 0xff;
        key = QChar::isPrint(character) ? static_cast<int>(hasCapital ? capital : character) : 0;
    }
    return key == 0 ? 0 : key | pad;
}

// Where Shift makes another character of it, Plasma looks for that one, and with Shift only if it
// is a letter or on the numeric pad.
int shiftedKeyOf(int key, int shifted) {
    if (key == 0 || shifted == 0 || shifted == key) {
        return key == 0 ? 0 : key | shift;
    }
    const bool keepsShift =
        (shifted & onPad) != 0 || QChar::isLetter(static_cast<char32_t>(shifted));
    return keepsShift ? shifted | shift : shifted;
}

} // namespace

QList<int> toolkitKeysOf(const KeyLayout& layout, std::uint32_t key, std::uint32_t modifiers,
                         std::uint32_t layoutNumber) {
    const auto held = layout.modifiers().stateOf(modifiers).value_or(0);
    const auto withoutShift = held & ~shiftBit;
    QList<int> keys;
    for (const bool numLock : {true, false}) {
        const auto produced = [&](std::uint32_t bits) {
            return keyOf(layout.shortcutSymbol(key, bits, layoutNumber, numLock));
        };
        const int plain = produced(withoutShift);
        const int found = held == withoutShift ? plain : shiftedKeyOf(plain, produced(held));
        if (found != 0 && !keys.contains(found)) {
            keys.push_back(found);
        }
    }
    return keys;
}

} // namespace vantrel
