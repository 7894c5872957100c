#pragma once

#include "testdesk/child_process.h"
#include "testdesk/private_server.h"

#include <filesystem>

namespace vantrel::demo {

// Films a private desktop. Throws when it cannot start or cannot finish the video.
class Recorder {
public:
    Recorder(const desktop::PrivateServer& server, std::filesystem::path video);

    void finish();

private:
    std::filesystem::path video_;
    std::filesystem::path log_;
    desktop::ChildProcess process_;
};

} // namespace vantrel::demo
