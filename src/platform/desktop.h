#pragma once

#include "platform/display.h"
#include "platform/input.h"
#include "platform/marks.h"
#include "platform/overlay.h"
#include "platform/session.h"
#include "platform/shell.h"
#include "platform/time.h"

namespace vantrel {

// All that the program asks of a desktop. Whoever puts it together keeps the objects for as long as
// anything that was handed this.
struct Desktop {
    const Clock& clock;
    MainQueue& mainQueue;

    Screens& screens;
    DisplayLinks& displayLinks;
    const CursorImages& cursors;

    Pointer& pointer;
    EventMonitors& eventMonitors;
    const Keyboard& keyboard;
    HotKeys& hotKeys;

    Marks& marks;
    OverlayWindows& overlayWindows;
    Transaction& transaction;

    const Locale& locale;
    const Bundle& bundle;
    UserDefaults& userDefaults;
    LoginItem& loginItem;
    Workspace& workspace;

    StatusItem& statusItem;
    AlertSound& alertSound;
    Application& application;
};

} // namespace vantrel
