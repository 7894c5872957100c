#pragma once

#include "testdesk/private_server.h"
#include "testdesk/x_connection.h"

#include <functional>
#include <string>
#include <vector>

namespace vantrel::desktop {

// Each starts the program on the server and returns once it is in charge; throws when it is not in
// time.

// The condition says when a program, searched for in PATH, is in charge. The variables go on top of
// the server's environment.
[[nodiscard]] ChildProcess startDesktopProgram(const PrivateServer& server,
                                               const std::vector<std::string>& arguments,
                                               const std::function<bool()>& ready,
                                               const Environment& variables = {});
[[nodiscard]] bool hasOwner(const XConnection& connection, const std::string& selection);

// openbox, with the distribution's settings.
[[nodiscard]] ChildProcess startWindowManager(const PrivateServer& server);

enum class CompositingManager {
    picom,          // nothing but composition
    picomEyeCandy,  // with the shadows, fading and dimming of its sample configuration
    picomLettingGo, // of all windows while one fills the screen
    xcompmgr,
};

[[nodiscard]] ChildProcess
startCompositingManager(const PrivateServer& server,
                        CompositingManager manager = CompositingManager::picom);

} // namespace vantrel::desktop
