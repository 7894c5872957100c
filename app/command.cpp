#include "app/command.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace vantrel {

namespace {

using Action = Command::Action;

struct Entry {
    std::array<std::string_view, 2> words; // empty ones are not there
    Command command;
};

constexpr std::array commands{
    Entry{{}, {Action::start}},
    Entry{{"--settings"}, {Action::startWithSettings}},
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
    const auto* found = std::ranges::find_if(
        commands, [words](const Entry& entry) { return isMadeOf(entry, words); });
    return found != commands.end() ? std::optional(found->command) : std::nullopt;
}

} // namespace vantrel
