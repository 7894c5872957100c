#pragma once

#include "testdesk/private_server.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace vantrel::desktop {

// The stored preferences of a fresh installation, as the program writes them. Change what a test
// needs: preferences["highlight"]["style"] = "ring".
[[nodiscard]] nlohmann::json defaultPreferences();

// The same with the mode that is shown at the start: "off", "highlight" or "laser".
[[nodiscard]] nlohmann::json preferencesShowing(const std::string& mode);

// Makes a folder for XDG_CONFIG_HOME with these preferences, of a user who has seen the welcome.
void writePreferences(const std::filesystem::path& configHome, const nlohmann::json& preferences);

struct VantrelOptions {
    // What was stored by the time of the start; null: whatever is there, if anything.
    nlohmann::json preferences = preferencesShowing("highlight");
    std::vector<std::string> arguments{};
    std::string display{};       // when it is not the server's own
    Environment environment{};   // on top of the server's; an empty variable is taken away
    std::string log = "vantrel"; // of several programs at a time each needs one of its own
};

// The program on a server, with settings and home of its own. Returns at once; what it writes to
// standard error goes to <log>.err in the server's folder.
[[nodiscard]] ChildProcess startVantrel(const PrivateServer& server,
                                        const std::filesystem::path& program,
                                        const VantrelOptions& options = {});

} // namespace vantrel::desktop
