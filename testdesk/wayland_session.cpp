#include "testdesk/wayland_session.h"

#include "testdesk/desktop_programs.h"
#include "testdesk/x_connection.h"

#include <fstream>
#include <utility>

#include <unistd.h>

namespace vantrel::desktop {
namespace {

// The display of its Xwayland is written down once that takes connections of every user.
std::filesystem::path writeConfiguration(const std::filesystem::path& folder,
                                         const xcb_screen_t& screen) {
    std::ofstream(folder / "sway.config")
        << "xwayland force\n"
        << "default_floating_border none\n"
        << "for_window [shell=\"xwayland\"] floating enable, move absolute position 0 0\n"
        << "output * resolution " << screen.width_in_pixels << "x" << screen.height_in_pixels
        << "\nexec xhost + && echo $DISPLAY >" << folder / "display"
        << "\n";
    return folder / "sway.config";
}

} // namespace

std::vector<std::string> asOrdinaryUser(std::vector<std::string> command) {
    if (geteuid() == 0) {
        const std::vector<std::string> asNobody{"setpriv",
                                                "--reuid=65534",
                                                "--regid=65534",
                                                "--clear-groups",
                                                "--inh-caps=+dac_override",
                                                "--ambient-caps=+dac_override"};
        command.insert(command.begin(), asNobody.begin(), asNobody.end());
    }
    return command;
}

namespace {

ChildProcess startSway(const PrivateServer& server, std::string& display) {
    const XConnection connection(server.display());
    return startDesktopProgram(
        server,
        asOrdinaryUser(
            {"sway", "--config", writeConfiguration(server.folder(), connection.screen())}),
        [&] {
            const std::string written = readFile(server.folder() / "display");
            display = written.substr(0, written.find('\n'));
            return display.size() < written.size();
        },
        {{"WLR_BACKENDS", "x11"}, {"WLR_RENDERER", "pixman"}});
}

} // namespace

WaylandSession::WaylandSession(const PrivateServer& server)
    : compositor_(startSway(server, display_)) {}

} // namespace vantrel::desktop
