#pragma once

#include "platform/desktop.h"
#include "platform/wayland/desktop.h"
#include "testdesk/headless/desktop.h"

namespace vantrel {

// What a compositor offers, and the rest from a desktop in memory.
[[nodiscard]] inline Desktop desktopOn(wayland::WaylandDesktop& wayland, const Clock& clock,
                                       MainQueue& mainQueue, headless::Desktop& rest) {
    return {.clock = clock,
            .mainQueue = mainQueue,
            .screens = wayland.screens,
            .displayLinks = wayland.displayLinks,
            .cursors = rest.cursors,
            .pointer = wayland.pointer,
            .eventMonitors = wayland.eventMonitors,
            .keyboard = rest.keyboard,
            .hotKeys = rest.hotKeys,
            .marks = rest.marks,
            .overlayWindows = wayland.overlayWindows,
            .transaction = wayland.transaction,
            .locale = rest.locale,
            .bundle = rest.bundle,
            .userDefaults = rest.userDefaults,
            .loginItem = rest.loginItem,
            .workspace = rest.workspace,
            .statusItem = rest.statusItem,
            .alertSound = rest.alertSound,
            .application = rest.application};
}

} // namespace vantrel
