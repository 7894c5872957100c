#include "app/state/command.h"

#include <gtest/gtest.h>

#include <vector>

namespace vantrel {
namespace {

using Action = Command::Action;
using Words = std::vector<std::string>;

TEST(CommandWords, AreUnderstoodWholeOrNotAtAll) {
    struct Case {
        Words words;
        std::optional<Command> command;
    };
    const Case cases[] = {
        {{}, Command{Action::start}},
        {{"--settings"}, Command{Action::startWithSettings}},
        {{"off"}, Command{Action::setMode, CursorMode::off}},
        {{"--settings", "laser"}, Command{Action::setMode, CursorMode::laser, true}},
        {{"toggle", "--settings", "laser"}, Command{Action::toggle, CursorMode::laser, true}},
        {{"status", "--settings"}, Command{Action::reportStatus}},
        {{"--settings", "--settings"}, Command{Action::startWithSettings}},
        {{"--settings", "other"}, std::nullopt},
        {{"laser"}, Command{Action::setMode, CursorMode::laser}},
        {{"toggle", "highlight"}, Command{Action::toggle, CursorMode::highlight}},
        {{"status"}, Command{Action::reportStatus}},
        {{"status", "--json"}, Command{Action::reportStatusAsJson}},
        {{"toggle"}, std::nullopt},
        {{"toggle", "off"}, std::nullopt},
        {{"off", "laser"}, std::nullopt},
        {{"status", "--json", "--json"}, std::nullopt},
        {{"--json", "status"}, std::nullopt},
        {{"OFF"}, std::nullopt},
        {{"off "}, std::nullopt},
        {{""}, std::nullopt},
        {{"off", ""}, std::nullopt},
        {{"toggle", "laser", "x"}, std::nullopt},
    };
    for (const auto& [words, command] : cases) {
        EXPECT_EQ(parseCommand(words), command) << testing::PrintToString(words);
    }
}

TEST(CommandWords, StartTheProgramOnlyForSomethingToSee) {
    const std::pair<Words, bool> cases[] = {
        {{"highlight"}, true}, {{"laser"}, true}, {{"toggle", "laser"}, true},
        {{"settings"}, true},  {{"off"}, false},  {{"status"}, false},
        {{"quit"}, false}};
    for (const auto& [words, starts] : cases) {
        EXPECT_EQ(parseCommand(words)->startsProgram(), starts) << words.front();
    }
}

} // namespace
} // namespace vantrel
