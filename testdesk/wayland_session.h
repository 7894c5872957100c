#pragma once

#include "testdesk/private_server.h"

#include <string>

namespace vantrel::desktop {

// sway as a Wayland session, with an Xwayland, as one window over the whole of a private X server:
// input for that server is input for the session, and its screen is what the session shows.
class WaylandSession {
public:
    // With windows of X programs as these lines of its configuration say. Throws when it does not
    // come up.
    explicit WaylandSession(const PrivateServer& server,
                            const std::string& rules = "for_window [shell=\"xwayland\"] floating "
                                                       "enable, move absolute position 0 0\n");

    // Of the Xwayland.
    [[nodiscard]] const std::string& display() const { return display_; }
    // As WAYLAND_DISPLAY has it.
    [[nodiscard]] const std::string& socket() const { return socket_; }

private:
    std::string display_;
    std::string socket_;
    ChildProcess compositor_;
};

} // namespace vantrel::desktop
