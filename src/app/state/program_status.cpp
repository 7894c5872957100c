#include "app/state/program_status.h"

#include <nlohmann/json.hpp>

namespace vantrel {

ProgramStatus programStatus(const AppState& state, const Bundle& bundle) {
    return {.mode = std::string(nameOf(state.mode().get())),
            .clickAvailable = state.clickAvailable().get(),
            .hotkeyError = state.hotkeyError().get(),
            .version = bundle.shortVersion().value_or(""),
            .build = bundle.buildNumber().value_or("")};
}

std::string toJson(const ProgramStatus& status) {
    nlohmann::ordered_json json;
    json["mode"] = status.mode;
    json["clickAvailable"] = status.clickAvailable;
    json["hotkeyError"] = nullptr;
    if (status.hotkeyError) {
        json["hotkeyError"] = *status.hotkeyError;
    }
    json["version"] = status.version;
    json["build"] = status.build;
    return json.dump();
}

} // namespace vantrel
