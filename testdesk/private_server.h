#pragma once

#include "testdesk/child_process.h"
#include "testdesk/temporary_folder.h"

#include <string>

namespace vantrel::desktop {

struct PixelSize {
    int width = 0;
    int height = 0;
};

// An X server for one test, on a number that the server chose, with nothing on it yet. It is ended
// when this is destroyed, and also when the test dies.
class PrivateServer {
public:
    // One screen of a fixed size at 24 bits; its mode has no rate. See setMonitors().
    static PrivateServer virtualScreen(PixelSize size = {1920, 1080});
    // Sixteen outputs that take any mode; one is on, at 1920 by 1080 and 60 Hz. See setOutputs().
    static PrivateServer virtualOutputs();

    [[nodiscard]] const std::string& display() const { return display_; }
    [[nodiscard]] pid_t pid() const { return process_.pid(); }
    // Home, settings and logs of the programs on it.
    [[nodiscard]] const std::filesystem::path& folder() const { return folder_.path(); }
    // For programs that run on it: its display, homes in folder(), no D-Bus.
    [[nodiscard]] Environment environment() const;

    // Ends it before its time.
    void stop() { process_.terminate(); }

private:
    PrivateServer(TemporaryFolder folder, std::vector<std::string> arguments);

    TemporaryFolder folder_;
    std::string display_;
    ChildProcess process_;
};

} // namespace vantrel::desktop
