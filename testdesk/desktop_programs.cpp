#include "testdesk/desktop_programs.h"

#include "testdesk/wait.h"

#include <chrono>
#include <fstream>
#include <stdexcept>

namespace vantrel::desktop {
namespace {

bool windowManagerIsThere(const XConnection& connection) {
    const auto window = connection.property(connection.root(), "_NET_SUPPORTING_WM_CHECK");
    return !window.empty() &&
           connection.property(window.front(), "_NET_SUPPORTING_WM_CHECK") == window;
}

// A window manager that is still starting announces itself and yet ignores a window, for good.
bool windowManagerAnswers(const XConnection& connection) {
    using namespace std::chrono_literals;
    if (!windowManagerIsThere(connection)) {
        return false;
    }
    const xcb_window_t window = xcb_generate_id(connection.get());
    xcb_create_window(connection.get(), XCB_COPY_FROM_PARENT, window, connection.root(), 0, 0, 1, 1,
                      0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(connection.get(), window);
    const bool managed =
        waitFor([&] { return !connection.property(window, "WM_STATE").empty(); }, 100ms);
    xcb_destroy_window(connection.get(), window);
    connection.sync();
    return managed;
}

// What the sample configuration of the distribution switches on.
constexpr const char* eyeCandy = R"(
backend = "xrender";
shadow = true;
shadow-radius = 7;
shadow-offset-x = -7;
shadow-offset-y = -7;
fading = true;
fade-in-step = 0.03;
fade-out-step = 0.03;
inactive-opacity = 0.8;
frame-opacity = 0.7;
mark-wmwin-focused = true;
mark-ovredir-focused = true;
detect-rounded-corners = true;
detect-client-opacity = true;
detect-transient = true;
use-damage = true;
wintypes:
{
  tooltip = { fade = true; shadow = true; opacity = 0.75; focus = true; full-shadow = false; };
  dock = { shadow = false; clip-shadow-above = true; }
  dnd = { shadow = false; }
  popup_menu = { opacity = 0.8; }
  dropdown_menu = { opacity = 0.8; }
};
)";

std::vector<std::string> commandFor(CompositingManager manager,
                                    const std::filesystem::path& folder) {
    if (manager == CompositingManager::xcompmgr) {
        return {"xcompmgr", "-n"};
    }
    const std::filesystem::path configuration = folder / "picom.conf";
    std::ofstream(configuration)
        << (manager == CompositingManager::picomEyeCandy ? eyeCandy : "backend = \"xrender\";\n")
        << (manager == CompositingManager::picomLettingGo ? "unredir-if-possible = true;\n" : "");
    return {"picom", "--config", configuration};
}

} // namespace

ChildProcess startDesktopProgram(const PrivateServer& server,
                                 const std::vector<std::string>& arguments,
                                 const std::function<bool()>& ready, const Environment& variables) {
    const std::string& name = arguments.front();
    const std::filesystem::path errors = server.folder() / (name + ".err");
    Environment environment = server.environment();
    for (const auto& [variable, value] : variables) {
        environment[variable] = value;
    }
    ChildProcess process({.arguments = arguments,
                          .environment = environment,
                          .output = server.folder() / (name + ".out"),
                          .errors = errors});
    bool running = true;
    const bool reached = waitFor([&] {
        running = process.running();
        return !running || ready();
    });
    if (!reached || !running) {
        throw std::runtime_error(name + " did not start: " + readFile(errors));
    }
    return process;
}

bool hasOwner(const XConnection& connection, const std::string& selection) {
    const auto cookie = xcb_get_selection_owner(connection.get(), connection.atom(selection));
    const auto reply = ownReply(xcb_get_selection_owner_reply(connection.get(), cookie, nullptr));
    return reply && reply->owner != XCB_NONE;
}

ChildProcess startWindowManager(const PrivateServer& server) {
    const XConnection connection(server.display());
    return startDesktopProgram(server, {"openbox", "--sm-disable"},
                               [&] { return windowManagerAnswers(connection); });
}

ChildProcess startCompositingManager(const PrivateServer& server, CompositingManager manager) {
    const XConnection connection(server.display());
    return startDesktopProgram(server, commandFor(manager, server.folder()),
                               [&] { return hasOwner(connection, "_NET_WM_CM_S0"); });
}

} // namespace vantrel::desktop
