#include "testdesk/vantrel_program.h"

#include "preferences/preference_encoding.h"

#include <fstream>

namespace vantrel::desktop {

nlohmann::json defaultPreferences() {
    return nlohmann::json::parse(encodePreferences({}).value());
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
