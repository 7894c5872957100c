#pragma once

#include "platform/system_clock.h"
#include "platform/x11/alert_sound.h"
#include "platform/x11/connection.h"
#include "platform/x11/display_link.h"
#include "platform/x11/event_loop.h"
#include "platform/x11/event_monitors.h"
#include "platform/x11/hot_keys.h"
#include "platform/x11/keyboard.h"
#include "platform/x11/overlay_windows.h"
#include "platform/x11/pointer.h"
#include "platform/x11/screens.h"
#include "platform/x11/system_tray.h"

namespace vantrel::x11 {

// All that an X server offers, on one connection that outlives it.
struct X11Desktop {
    explicit X11Desktop(Connection& connection)
        : eventLoop(connection),
          screens(connection),
          pointer(connection, screens, clock),
          eventMonitors(connection, pointer),
          hotKeys(connection),
          keyboard(connection),
          alertSound(connection),
          displayLinks(connection, screens),
          overlayWindows(connection, screens, clock),
          transaction(overlayWindows),
          systemTray(connection) {}

    EventLoop eventLoop;
    SystemClock clock;
    // Events are drained by each in this order: the displays are read anew before presses and
    // motion are told of, which go by them.
    X11Screens screens;
    X11Pointer pointer;
    X11EventMonitors eventMonitors;
    X11HotKeys hotKeys;
    X11Keyboard keyboard;
    X11AlertSound alertSound;
    X11DisplayLinks displayLinks;
    X11OverlayWindows overlayWindows;
    X11Transaction transaction;
    X11SystemTray systemTray;
};

} // namespace vantrel::x11
