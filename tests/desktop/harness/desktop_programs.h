#pragma once

#include "desktop/harness/private_server.h"

namespace vantrel::desktop {

// Each starts the program on the server and returns once it is in charge; throws when it is not in
// time.

// openbox, with the distribution's settings.
[[nodiscard]] ChildProcess startWindowManager(const PrivateServer& server);

enum class CompositingManager {
    picom,         // nothing but composition
    picomEyeCandy, // with the shadows, fading and dimming of its sample configuration
    xcompmgr,
};

[[nodiscard]] ChildProcess
startCompositingManager(const PrivateServer& server,
                        CompositingManager manager = CompositingManager::picom);

} // namespace vantrel::desktop
