#pragma once

#include "preferences/preferences.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace vantrel {

// What the words of a command line ask of the program. A start makes the process the program, or
// turns to the one that runs; everything else is for the one that runs.
struct Command {
    enum class Action : std::uint8_t {
        start,
        startWithSettings,
        setMode,
        toggle, // off when the mode is on already, as its shortcut does
        reportStatus,
        reportStatusAsJson,
        openSettings,
        quit,
    };

    Action action = Action::start;
    CursorMode mode = CursorMode::off; // of setMode and toggle
    bool withSettings = false;         // of these and the reports: opens the settings as well

    [[nodiscard]] bool isStart() const {
        return action == Action::start || action == Action::startWithSettings;
    }
    [[nodiscard]] bool opensSettings() const {
        return withSettings || action == Action::startWithSettings ||
               action == Action::openSettings;
    }
    [[nodiscard]] bool setsMode() const {
        return action == Action::setMode || action == Action::toggle;
    }
    [[nodiscard]] bool reportsStatus() const {
        return action == Action::reportStatus || action == Action::reportStatusAsJson;
    }
    // Whether it is worth starting the program for, when none runs.
    [[nodiscard]] bool startsProgram() const {
        return !reportsStatus() &&
               (isStart() || opensSettings() || (setsMode() && mode != CursorMode::off));
    }

    bool operator==(const Command&) const = default;
};

// Nothing for words that are no command. "--settings" may stand anywhere among them, but not beside
// "quit".
[[nodiscard]] std::optional<Command> parseCommand(std::span<const std::string> words);

} // namespace vantrel
