#include "testdesk/tray.h"

#include "testdesk/desktop_programs.h"
#include "testdesk/wait.h"

#include <csignal>
#include <stdexcept>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

constexpr const char* traySelection = "_NET_SYSTEM_TRAY_S0";

// Of one width, so that it is to be seen without icons too.
ChildProcess startTray(const PrivateServer& server, const XConnection& connection,
                       Tray::Edge edge) {
    return startDesktopProgram(server,
                               {"trayer", "--edge", edge == Tray::Edge::top ? "top" : "bottom",
                                "--align", "right", "--widthtype", "pixel", "--width", "200",
                                "--heighttype", "pixel", "--height", "32", "--SetDockType", "true",
                                "--SetPartialStrut", "true"},
                               [&] {
                                   return hasOwner(connection, traySelection) &&
                                          !visibleWindows(connection, {.program = "panel"}).empty();
                               });
}

} // namespace

Tray::Tray(const PrivateServer& server, Edge edge)
    : connection_(server.display()), process_(startTray(server, connection_, edge)) {}

std::optional<WindowState> Tray::icon(const std::string& program) const {
    for (const WindowState& panel : visibleWindows(connection_, {.program = "panel"})) {
        for (const xcb_window_t window : windowsWithin(connection_, panel.id)) {
            const auto state = stateOf(connection_, window);
            if (state && state->visible && state->program == program) {
                return state;
            }
        }
    }
    return {};
}

std::optional<PixelRect> Tray::iconArea(const std::string& program) const {
    const auto state = icon(program);
    return state ? std::optional(state->area) : std::nullopt;
}

std::optional<PixelRect> Tray::waitForIcon(const std::string& program) const {
    std::optional<PixelRect> area;
    // An icon moves to its place after it was put into the panel.
    waitFor([&] {
        const auto before = area;
        area = iconArea(program);
        return area && area == before && area->y > 0;
    });
    return area;
}

void Tray::kill() {
    process_.signal(SIGKILL);
    process_.wait(10s);
    if (!waitUntilGone(connection_, {.program = "panel"})) {
        throw std::runtime_error("the tray outlives its process");
    }
}

} // namespace vantrel::desktop
