#pragma once

#include "support/program_fixture.h"
#include "testdesk/tray.h"

#include <gmock/gmock.h>

#include <optional>

namespace vantrel::desktop {

// The built program on a desktop with a window manager, and with whatever tray a test gives it.
class ShellTest : public ProgramTest {
protected:
    explicit ShellTest(PrivateServer privateServer = PrivateServer::virtualScreen({1280, 900}))
        : ProgramTest(std::move(privateServer)) {}

    [[nodiscard]] std::optional<WindowState>
    shown(const WindowQuery& query, std::chrono::milliseconds limit = std::chrono::seconds(10)) {
        return waitForWindow(watcher, query, limit);
    }
    // Where something could still appear.
    [[nodiscard]] bool staysHidden(const WindowQuery& query) {
        return !shown(query, std::chrono::milliseconds(500));
    }
    [[nodiscard]] bool isGone(const WindowQuery& query) const {
        return waitUntilGone(watcher, query);
    }
    [[nodiscard]] bool getsFocus(const WindowState& window) const {
        return waitFor([&] { return hasFocus(watcher, window.id); });
    }
    const std::string name = "vantrel";
    const WindowQuery popover{.program = name, .type = "_NET_WM_WINDOW_TYPE_UTILITY"};
    const WindowQuery anyWindow{.program = name, .type = "_NET_WM_WINDOW_TYPE_NORMAL"};
    const WindowQuery overlay{.program = name, .type = "_NET_WM_WINDOW_TYPE_DND"};
    const WindowQuery settings{.program = name, .title = "Vantrel", .width = 560, .height = 640};
    const WindowQuery welcome{.program = name, .title = "Vantrel", .width = 560, .height = 580};
    const WindowQuery help{.program = name, .title = "Vantrel", .width = 520, .height = 540};

    ChildProcess windowManager = startWindowManager(server);
};

inline bool contains(const PixelRect& outer, const PixelRect& inner) {
    return inner.x >= outer.x && inner.y >= outer.y &&
           inner.x + inner.width <= outer.x + outer.width &&
           inner.y + inner.height <= outer.y + outer.height;
}

} // namespace vantrel::desktop
