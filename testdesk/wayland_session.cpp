#include "testdesk/wayland_session.h"

#include "testdesk/compositor.h"
#include "testdesk/desktop_programs.h"
#include "testdesk/x_connection.h"

#include <fstream>
#include <sstream>

namespace vantrel::desktop {
namespace {

// What programs need to know is written down once its Xwayland takes connections of every user.
std::filesystem::path writeConfiguration(const std::filesystem::path& folder,
                                         const xcb_screen_t& screen, const std::string& rules) {
    std::ofstream(folder / "sway.config")
        << "xwayland force\n"
        << "default_floating_border none\n"
        << rules << "output * resolution " << screen.width_in_pixels << "x"
        << screen.height_in_pixels << "\nexec xhost + && echo $DISPLAY $WAYLAND_DISPLAY ready >"
        << folder / "names"
        << "\n";
    return folder / "sway.config";
}

ChildProcess startSway(const PrivateServer& server, const std::string& rules, std::string& display,
                       std::string& socket) {
    const XConnection connection(server.display());
    const auto configuration = writeConfiguration(server.folder(), connection.screen(), rules);
    return startDesktopProgram(server, asOrdinaryUser({"sway", "--config", configuration}),
                               [&] {
                                   std::istringstream names(readFile(server.folder() / "names"));
                                   std::string ready;
                                   return static_cast<bool>(names >> display >> socket >> ready);
                               },
                               {{"WLR_BACKENDS", "x11"}, {"WLR_RENDERER", "pixman"}});
}

} // namespace

WaylandSession::WaylandSession(const PrivateServer& server, const std::string& rules)
    : compositor_(startSway(server, rules, display_, socket_)) {}

} // namespace vantrel::desktop
