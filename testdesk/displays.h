#pragma once

#include "testdesk/private_server.h"
#include "testdesk/x_connection.h"

#include <vector>

namespace vantrel::desktop {

// Divides the screen of PrivateServer::virtualScreen() into monitors without a mode of their own,
// replacing those set before. The first one is the primary.
void setMonitors(const XConnection& connection, const std::vector<PixelRect>& monitors);

struct Output {
    PixelSize size;
    double rate = 60; // frames for each second
    PixelPoint position{};
};

// Turns outputs of PrivateServer::virtualOutputs() on, DUMMY0 and up, and all others off. The
// screen becomes just large enough. Throws when the server refuses.
void setOutputs(const XConnection& connection, const std::vector<Output>& outputs);

} // namespace vantrel::desktop
