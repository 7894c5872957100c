#include "app/state/command.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace vantrel {

namespace {

using Action = Command::Action;

struct Entry {
    std::array<std::string_view, 2> words; // empty ones are not there
    Command command;
};

constexpr std::array commands{
    Entry{{}, {Action::start}},
    Entry{{"off"}, {Action::setMode, CursorMode::off}},
    Entry{{"highlight"}, {Action::setMode, CursorMode::highlight}},
    Entry{{"laser"}, {Action::setMode, CursorMode::laser}},
    Entry{{"toggle", "highlight"}, {Action::toggle, CursorMode::highlight}},
    Entry{{"toggle", "laser"}, {Action::toggle, CursorMode::laser}},
    Entry{{"status"}, {Action::reportStatus}},
    Entry{{"status", "--json"}, {Action::reportStatusAsJson}},
    Entry{{"settings"}, {Action::openSettings}},
    Entry{{"quit"}, {Action::quit}},
};

bool isMadeOf(const Entry& entry, std::span<const std::string> words) {
    const auto end = std::ranges::find(entry.words, std::string_view());
    return std::equal(entry.words.begin(), end, words.begin(), words.end());
}

} // namespace

std::optional<Command> parseCommand(std::span<const std::string> words) {
    std::vector<std::string> others(words.begin(), words.end());
    const bool withSettings = std::erase(others, "--settings") > 0;
    const auto* found = std::ranges::find_if(
        commands, [&others](const Entry& entry) { return isMadeOf(entry, others); });
    if (found == commands.end()) {
        return std::nullopt;
    }
    auto command = found->command;
    if (withSettings && command.action == Action::start) {
        command.action = Action::startWithSettings;
    }
    if (withSettings && command.action == Action::quit) {
        return std::nullopt;
    }
    command.withSettings = withSettings && (command.setsMode() || command.reportsStatus());
    return command;
}

} // namespace vantrel
