#pragma once

#include "desktop/harness/child_process.h"
#include "desktop/harness/private_server.h"
#include "stage.h"

#include <filesystem>
#include <string>

#include <QImage>

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

// The screen as it is now, with the pointer.
[[nodiscard]] QImage photograph(const desktop::XConnection& connection);

} // namespace vantrel::demo
