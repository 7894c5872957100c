#pragma once

#include "testdesk/child_process.h"
#include "testdesk/private_server.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel::demo {

enum class SessionKind : std::uint8_t { x11, gnome, kde, sway };

// As it is named in the command: "x11", "gnome", "kde" or "sway".
[[nodiscard]] std::optional<SessionKind> sessionNamed(std::string_view name);

// A desktop that fills the screen of a private X server: that server's pointer and keyboard are its
// own, and a picture of that screen shows it, whichever kind it is of. It ends with this.
struct Session {
    Session() = default;
    virtual ~Session() = default;
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    desktop::Environment environment; // for its programs; has a DISPLAY
    std::string marks;                // who draws them, in Vantrel's word for it
    bool placesWindows = true;        // where programs want; else one fills the screen
    bool hasShortcuts = true;         // that programs can ask for
    bool tellsOfClicks = true;
};

// Of the program whose share folder is the data folder. Returns once it is up; throws when it
// cannot be had, and says why. There must be a QCoreApplication.
[[nodiscard]] std::unique_ptr<Session> startSession(SessionKind kind,
                                                    const desktop::PrivateServer& server,
                                                    const std::filesystem::path& dataFolder);

} // namespace vantrel::demo
