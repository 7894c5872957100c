#include "testdesk/vantrel_program.h"

#include <fstream>

namespace vantrel::desktop {

nlohmann::json defaultPreferences() {
    return nlohmann::json::parse(R"({
        "schemaVersion": 1,
        "lastMode": "off",
        "highlight": {
            "style": "filled",
            "color": {"red": 0.9803921568627451, "green": 0.8, "blue": 0.08235294117647059},
            "diameter": 64,
            "opacity": 0.35,
            "idleHide": false,
            "idleSeconds": 3
        },
        "click": {"style": "ripple", "left": true, "right": true},
        "laser": {
            "color": {"red": 1.0, "green": 0.27058823529411763, "blue": 0.22745098039215686},
            "diameter": 12,
            "glow": "medium"
        },
        "highlightShortcut": {"keyCode": 4, "modifiers": 6144, "display": "⌃⌥H"},
        "laserShortcut": {"keyCode": 37, "modifiers": 6144, "display": "⌃⌥L"},
        "launchAtLogin": false,
        "language": "system"
    })");
}

nlohmann::json preferencesShowing(const std::string& mode) {
    nlohmann::json preferences = defaultPreferences();
    preferences["lastMode"] = mode;
    return preferences;
}

void writePreferences(const std::filesystem::path& configHome, const nlohmann::json& preferences) {
    const std::filesystem::path folder = configHome / "vantrel";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "Vantrel.preferences.v1") << preferences.dump();
    std::ofstream(folder / "welcomeDismissed") << "true";
}

ChildProcess startVantrel(const PrivateServer& server, const std::filesystem::path& program,
                          const VantrelOptions& options) {
    Environment environment = server.environment();
    if (!options.display.empty()) {
        environment["DISPLAY"] = options.display;
    }
    for (const auto& [name, value] : options.environment) {
        environment[name] = value;
    }
    std::erase_if(environment, [](const auto& variable) { return variable.second.empty(); });
    if (!options.preferences.is_null()) {
        writePreferences(environment.at("XDG_CONFIG_HOME"), options.preferences);
    }
    std::vector<std::string> arguments{program};
    arguments.insert(arguments.end(), options.arguments.begin(), options.arguments.end());
    return ChildProcess({.arguments = arguments,
                         .environment = environment,
                         .output = server.folder() / (options.log + ".out"),
                         .errors = server.folder() / (options.log + ".err")});
}

} // namespace vantrel::desktop
