#pragma once

#include "platform/input.h"
#include "preferences/preferences.h"

#include <functional>
#include <optional>
#include <string_view>
#include <vector>

namespace vantrel {

// Why a shortcut does not work.
namespace hotkeyerror {
inline constexpr std::string_view duplicate = "duplicate";       // both are the same combination
inline constexpr std::string_view registration = "registration"; // the desktop refused one
} // namespace hotkeyerror

// Keeps the two shortcuts of the preferences registered with the desktop, and reports a press as
// the mode that it asks for.
class HotkeyManager {
public:
    // The hot keys must outlive the manager, the only one to register any.
    explicit HotkeyManager(HotKeys& hotKeys);
    ~HotkeyManager();
    HotkeyManager(const HotkeyManager&) = delete;
    HotkeyManager& operator=(const HotkeyManager&) = delete;

    // What the hot key with that number, one of those that this registers, is for.
    [[nodiscard]] static CursorMode modeOf(std::uint32_t id);

    // Receives highlight or laser.
    std::function<void(CursorMode)> onMode;

    // Called when a shortcut may have been lost or come back: register_ tells.
    std::function<void()> onLoss;

    // Replaces all that was registered before. Returns one of the hotkeyerror texts, or nothing:
    // after "duplicate" neither shortcut works, after "registration" one that was not refused does.
    std::optional<std::string_view> register_(const AppPreferences& preferences);

private:
    void unregisterAll();
    bool registerShortcut(const std::optional<Shortcut>& shortcut, std::uint32_t id);
    void handle(HotKeyId pressed) const;

    HotKeys& hotKeys_;
    std::vector<HotKeys::Ref> refs_; // in the order of registration
};

} // namespace vantrel
