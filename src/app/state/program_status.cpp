#include "app/state/program_status.h"

#include <nlohmann/json.hpp>

namespace vantrel {

namespace {

std::string whoDraws(const Marks& marks, bool inWaylandSession) {
    return marks.state() == MarksState::available ? std::string(marks.drawer())
           : inWaylandSession                     ? "xwayland"
                                                  : "x11";
}

// Of a Wayland session, in which nobody else can draw them over everything.
std::optional<std::string> whatIsMissing(MarksState marks) {
    switch (marks) {
    case MarksState::none:
        return "desktop";
    case MarksState::available:
        return std::nullopt;
    case MarksState::off:
        return "switchedOff";
    case MarksState::needsLogin:
        return "login";
    case MarksState::otherVersion:
        return "otherVersion";
    case MarksState::busy:
        return "busy";
    case MarksState::unsupported:
        return "unsupported";
    case MarksState::failed:
        return "failed";
    }
    return std::nullopt;
}

} // namespace

ProgramStatus programStatus(const AppState& state, const Desktop& desktop) {
    const auto marks = state.marks().get();
    const bool inWaylandSession = desktop.application.inWaylandSession();
    const auto& bundle = desktop.bundle;
    return {.mode = std::string(nameOf(state.mode().get())),
            .marks = whoDraws(desktop.marks, inWaylandSession),
            .marksMissing = inWaylandSession ? whatIsMissing(marks) : std::nullopt,
            .clickAvailable = state.clickAvailable().get(),
            .hotkeyError = state.hotkeyError().get(),
            .version = bundle.shortVersion().value_or(""),
            .build = bundle.buildNumber().value_or("")};
}

std::string toJson(const ProgramStatus& status) {
    using Json = nlohmann::ordered_json;
    const auto orNull = [](const auto& text) { return text ? Json(*text) : Json(nullptr); };
    Json json;
    json["mode"] = status.mode;
    json["marks"] = status.marks;
    json["marksMissing"] = orNull(status.marksMissing);
    json["clickAvailable"] = status.clickAvailable;
    json["hotkeyError"] = orNull(status.hotkeyError);
    json["version"] = status.version;
    json["build"] = status.build;
    return json.dump();
}

} // namespace vantrel
