#include "preferences/shortcut.h"

namespace vantrel {

namespace {

constexpr std::uint32_t controlAndOption = modifier::control | modifier::option;

} // namespace

Shortcut Shortcut::defaultHighlight() {
    return {4, controlAndOption, "⌃⌥H"};
}

Shortcut Shortcut::defaultLaser() {
    return {37, controlAndOption, "⌃⌥L"};
}

bool sameCombination(const Shortcut& a, const Shortcut& b) {
    return a.keyCode == b.keyCode && a.modifiers == b.modifiers;
}

} // namespace vantrel
