#pragma once

#include "testdesk/private_server.h"

#include <string>
#include <vector>

namespace vantrel::desktop {

// A Wayland session, with an Xwayland, as one window over the whole of a private X server: input
// for that server is input for the session, and its screen is what the session shows.
class WaylandSession {
public:
    // Throws when it does not come up.
    explicit WaylandSession(const PrivateServer& server);

    // Of the Xwayland.
    [[nodiscard]] const std::string& display() const { return display_; }

private:
    std::string display_;
    ChildProcess compositor_;
};

// A compositor's command. Root, as whom sway refuses to run, becomes nobody for it, with the right
// to write where root does.
[[nodiscard]] std::vector<std::string> asOrdinaryUser(std::vector<std::string> command);

} // namespace vantrel::desktop
