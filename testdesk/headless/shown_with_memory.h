#pragma once

#include "platform/desktop.h"
#include "testdesk/headless/desktop.h"

namespace vantrel {

// What a real desktop shows marks with, these parts, and the rest from a desktop in memory.
[[nodiscard]] Desktop desktopWith(auto& shown, const Clock& clock, MainQueue& mainQueue,
                                  const Keyboard& keyboard, HotKeys& hotKeys,
                                  AlertSound& alertSound, headless::Desktop& rest) {
    return {.clock = clock,
            .mainQueue = mainQueue,
            .screens = shown.screens,
            .displayLinks = shown.displayLinks,
            .cursors = rest.cursors,
            .pointer = shown.pointer,
            .eventMonitors = shown.eventMonitors,
            .keyboard = keyboard,
            .hotKeys = hotKeys,
            .marks = rest.marks,
            .overlayWindows = shown.overlayWindows,
            .transaction = shown.transaction,
            .locale = rest.locale,
            .bundle = rest.bundle,
            .userDefaults = rest.userDefaults,
            .loginItem = rest.loginItem,
            .workspace = rest.workspace,
            .statusItem = rest.statusItem,
            .alertSound = alertSound,
            .application = rest.application};
}

} // namespace vantrel
