#include "preferences/shortcut.h"

#include <QString>

// Apart from the rest of the shortcut, which needs nothing of the toolkit.

namespace vantrel {

namespace {

struct ModifierKey {
    std::uint32_t flag;
    std::uint32_t bit;
    std::string_view symbol;
};

// In the order in which a display text names them.
constexpr std::array<ModifierKey, 4> modifierKeys{{
    {keyflag::control, modifier::control, "⌃"},
    {keyflag::option, modifier::option, "⌥"},
    {keyflag::shift, modifier::shift, "⇧"},
    {keyflag::command, modifier::command, "⌘"},
}};

// With Unicode's full case mapping: a sharp s becomes two letters.
std::string upperCase(const std::string& text) {
    return QString::fromStdString(text).toUpper().toStdString();
}

std::string keyText(const KeyPress& press) {
    if (press.charactersIgnoringModifiers) {
        return upperCase(*press.charactersIgnoringModifiers);
    }
    return press.name.empty() ? std::to_string(press.keyCode) : press.name;
}

} // namespace

std::optional<Shortcut> Shortcut::fromKeyPress(const KeyPress& press) {
    constexpr auto required = keyflag::control | keyflag::option | keyflag::command;
    if ((press.modifierFlags & required) == 0) {
        return std::nullopt;
    }
    Shortcut shortcut;
    shortcut.keyCode = press.keyCode;
    for (const auto& key : modifierKeys) {
        if ((press.modifierFlags & key.flag) != 0) {
            shortcut.modifiers |= key.bit;
            shortcut.display += key.symbol;
        }
    }
    shortcut.display += keyText(press);
    return shortcut;
}

} // namespace vantrel
