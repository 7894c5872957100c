#pragma once

#include "testdesk/child_process.h"
#include "testdesk/private_server.h"

#include <filesystem>
#include <string>

namespace vantrel::desktop {

// How KWin is started as a Wayland session of its own, for which nothing but these programs is
// needed.
struct KWinOptions {
    PixelSize size{1280, 720}; // of each output
    int outputs = 1;
    double scale = 1;
    bool xwayland = false;
    bool locks = false;   // has a lock screen
    std::string screen{}; // of the X server that shows it; none: nothing does
};

// Plasma's, such as 5; 0 where there is no KWin.
[[nodiscard]] int kwinVersion();

// In that folder, with effects from the data folder besides those of the system.
[[nodiscard]] Environment kwinEnvironment(const std::filesystem::path& folder,
                                          const std::string& bus,
                                          const std::filesystem::path& dataFolder);

// In an environment as above. Writes into the folder what the command takes; kwin.err there has
// what KWin complains of.
[[nodiscard]] Command kwinCommand(const std::filesystem::path& folder,
                                  const Environment& environment, const KWinOptions& options);

// For the programs of such a session with an Xwayland. Without DISPLAY as long as that is not up.
[[nodiscard]] Environment withXwaylandOf(const std::filesystem::path& folder,
                                         Environment environment);

} // namespace vantrel::desktop
