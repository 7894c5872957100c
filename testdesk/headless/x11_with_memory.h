#pragma once

#include "platform/x11/desktop.h"
#include "testdesk/headless/shown_with_memory.h"

namespace vantrel {

// What an X server offers, and the rest from a desktop in memory.
[[nodiscard]] inline Desktop desktopOn(x11::X11Desktop& x11, MainQueue& mainQueue,
                                       headless::Desktop& rest) {
    return desktopWith(x11, x11.clock, mainQueue, x11.keyboard, x11.hotKeys, x11.alertSound, rest);
}

} // namespace vantrel
