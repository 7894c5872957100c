#include "input/hotkey_manager.h"

#include <utility>

namespace vantrel {

namespace {

constexpr std::uint32_t signature = 0x5654524C; // VTRL
constexpr std::uint32_t highlightId = 1;
constexpr std::uint32_t laserId = 2;

} // namespace

HotkeyManager::HotkeyManager(HotKeys& hotKeys) : hotKeys_(hotKeys) {
    hotKeys_.setHandler([this](HotKeyId pressed) { handle(pressed); });
    hotKeys_.setLossHandler([this] {
        if (onLoss) {
            onLoss();
        }
    });
}

HotkeyManager::~HotkeyManager() {
    unregisterAll();
    hotKeys_.setHandler(nullptr);
    hotKeys_.setLossHandler(nullptr);
}

std::optional<std::string_view> HotkeyManager::register_(const AppPreferences& preferences) {
    unregisterAll();
    const auto& highlight = preferences.highlightShortcut;
    const auto& laser = preferences.laserShortcut;
    if (highlight && laser && sameCombination(*highlight, *laser)) {
        return hotkeyerror::duplicate;
    }
    const bool highlightWorks = registerShortcut(highlight, highlightId);
    const bool laserWorks = registerShortcut(laser, laserId);
    return highlightWorks && laserWorks ? std::nullopt : std::optional(hotkeyerror::registration);
}

void HotkeyManager::unregisterAll() {
    for (const auto ref : std::exchange(refs_, {})) {
        hotKeys_.unregister(ref);
    }
}

// A shortcut that is not there has nothing that could fail.
bool HotkeyManager::registerShortcut(const std::optional<Shortcut>& shortcut, std::uint32_t id) {
    if (!shortcut) {
        return true;
    }
    const auto ref = hotKeys_.register_(shortcut->keyCode, shortcut->modifiers, {signature, id});
    if (ref) {
        refs_.push_back(*ref);
    }
    return ref.has_value();
}

void HotkeyManager::handle(HotKeyId pressed) const {
    if (onMode) {
        onMode(modeOf(pressed.id));
    }
}

CursorMode HotkeyManager::modeOf(std::uint32_t id) {
    return id == highlightId ? CursorMode::highlight : CursorMode::laser;
}

} // namespace vantrel
