#include "app/state/program_status.h"

#include <nlohmann/json.hpp>

namespace vantrel {

namespace {

// The marks are those of the desktop itself.
std::optional<std::string> wordFor(Means means, const Marks& marks) {
    switch (means) {
    case Means::none:
        return std::nullopt;
    case Means::x11:
        return "x11";
    case Means::xwayland:
        return "xwayland";
    case Means::layerShell:
        return "layer-shell";
    case Means::cursorSession:
        return "cursor-session";
    case Means::portal:
        return "portal";
    case Means::desktop:
        return std::string(marks.drawer());
    }
    return std::nullopt;
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
    const auto means = state.means();
    const auto word = [&](Means what) { return wordFor(what, desktop.marks); };
    const bool mayDrawBetter = means.drawing == Means::xwayland || means.drawing == Means::none;
    const auto& bundle = desktop.bundle;
    return {.mode = std::string(nameOf(state.mode().get())),
            .marks = word(means.drawing),
            .marksMissing = mayDrawBetter ? whatIsMissing(marks) : std::nullopt,
            .pointer = word(means.pointer),
            .presses = word(means.presses),
            .shortcuts = word(means.shortcuts),
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
    json["marks"] = orNull(status.marks);
    json["marksMissing"] = orNull(status.marksMissing);
    json["pointer"] = orNull(status.pointer);
    json["presses"] = orNull(status.presses);
    json["shortcuts"] = orNull(status.shortcuts);
    json["clickAvailable"] = status.clickAvailable;
    json["hotkeyError"] = orNull(status.hotkeyError);
    json["version"] = status.version;
    json["build"] = status.build;
    return json.dump();
}

} // namespace vantrel
