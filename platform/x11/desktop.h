#pragma once

#include "platform/system_clock.h"
#include "platform/x11/alert_sound.h"
#include "platform/x11/connection.h"
#include "platform/x11/cursor_images.h"
#include "platform/x11/display_link.h"
#include "platform/x11/event_loop.h"
#include "platform/x11/event_monitors.h"
#include "platform/x11/hot_keys.h"
#include "platform/x11/keyboard.h"
#include "platform/x11/overlay_windows.h"
#include "platform/x11/pointer.h"
#include "platform/x11/screens.h"

namespace vantrel::x11 {

// All that an X server offers, on one connection that outlives it.
struct X11Desktop {
    // The pictures of the pointer are shown where the desktop's own cannot be had.
    explicit X11Desktop(Connection& connection,
                        const CursorImages& drawnCursors = NoCursorImages::instance())
        : eventLoop(connection),
          screens(connection),
          pointer(connection, screens),
          eventMonitors(connection, pointer),
          hotKeys(connection),
          keyboard(connection),
          alertSound(connection),
          cursorImages(connection, drawnCursors),
          displayLinks(connection, screens),
          overlayWindows(connection, screens, clock),
          transaction(overlayWindows) {}

    EventLoop eventLoop;
    SystemClock clock;
    X11Screens screens;
    X11Pointer pointer;
    X11EventMonitors eventMonitors;
    X11HotKeys hotKeys;
    X11Keyboard keyboard;
    X11AlertSound alertSound;
    X11CursorImages cursorImages;
    X11DisplayLinks displayLinks;
    X11OverlayWindows overlayWindows;
    X11Transaction transaction;
};

} // namespace vantrel::x11
