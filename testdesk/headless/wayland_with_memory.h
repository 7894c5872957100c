#pragma once

#include "platform/wayland/desktop.h"
#include "testdesk/headless/shown_with_memory.h"

namespace vantrel {

// What a compositor offers, and the rest from a desktop in memory.
[[nodiscard]] inline Desktop desktopOn(wayland::WaylandDesktop& wayland, const Clock& clock,
                                       MainQueue& mainQueue, headless::Desktop& rest) {
    return desktopWith(wayland, clock, mainQueue, rest.keyboard, rest.hotKeys, rest.alertSound,
                       rest);
}

} // namespace vantrel
