#pragma once

#include "platform/desktop.h"
#include "platform/x11/desktop.h"
#include "testdesk/headless/desktop.h"

namespace vantrel {

// What an X server offers, and the rest from a desktop in memory.
[[nodiscard]] inline Desktop desktopOn(x11::X11Desktop& x11, MainQueue& mainQueue,
                                       headless::Desktop& rest) {
    return {.clock = x11.clock,
            .mainQueue = mainQueue,
            .screens = x11.screens,
            .displayLinks = x11.displayLinks,
            .cursors = rest.cursors,
            .pointer = x11.pointer,
            .eventMonitors = x11.eventMonitors,
            .keyboard = x11.keyboard,
            .hotKeys = x11.hotKeys,
            .marks = rest.marks,
            .overlayWindows = x11.overlayWindows,
            .transaction = x11.transaction,
            .locale = rest.locale,
            .bundle = rest.bundle,
            .userDefaults = rest.userDefaults,
            .loginItem = rest.loginItem,
            .workspace = rest.workspace,
            .statusItem = rest.statusItem,
            .alertSound = x11.alertSound,
            .application = rest.application};
}

} // namespace vantrel
