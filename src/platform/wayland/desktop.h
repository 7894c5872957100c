#pragma once

#include "platform/wayland/connection.h"
#include "platform/wayland/display_link.h"
#include "platform/wayland/event_loop.h"
#include "platform/wayland/event_monitors.h"
#include "platform/wayland/outputs.h"
#include "platform/wayland/overlay_windows.h"
#include "platform/wayland/pointer.h"

namespace vantrel::wayland {

// What a compositor offers that has a layer shell and cursor sessions, on one connection that
// outlives it.
struct WaylandDesktop {
    WaylandDesktop(Connection& connection, const Clock& clock)
        : eventLoop(connection),
          screens(connection),
          pointer(connection, screens),
          eventMonitors(connection, pointer),
          overlayWindows(connection, screens, clock),
          displayLinks(overlayWindows),
          transaction(overlayWindows) {}

    EventLoop eventLoop;
    WaylandScreens screens;
    WaylandPointer pointer;
    WaylandEventMonitors eventMonitors;
    WaylandOverlayWindows overlayWindows;
    WaylandDisplayLinks displayLinks;
    WaylandTransaction transaction;
};

} // namespace vantrel::wayland
