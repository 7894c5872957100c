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
        bool startsProgram = false;
    };
    const Case cases[] = {
        {{}, Command{Action::start}, true},
        {{"--settings"}, Command{Action::startWithSettings}, true},
        {{"settings"}, Command{Action::openSettings}, true},
        {{"off"}, Command{Action::setMode, CursorMode::off}},
        {{"highlight"}, Command{Action::setMode, CursorMode::highlight}, true},
        {{"laser"}, Command{Action::setMode, CursorMode::laser}, true},
        {{"--settings", "laser"}, Command{Action::setMode, CursorMode::laser, true}, true},
        {{"toggle", "highlight"}, Command{Action::toggle, CursorMode::highlight}, true},
        {{"toggle", "--settings", "laser"}, Command{Action::toggle, CursorMode::laser, true}, true},
        {{"status"}, Command{Action::reportStatus}},
        {{"status", "--json"}, Command{Action::reportStatusAsJson}},
        {{"status", "--settings"}, Command{Action::reportStatus, CursorMode::off, true}},
        {{"quit"}, Command{Action::quit}},
        {{"quit", "--settings"}, std::nullopt},
        {{"toggle"}, std::nullopt},
        {{"toggle", "off"}, std::nullopt},
        {{"off", "laser"}, std::nullopt},
        {{"--json", "status"}, std::nullopt},
        {{"--settings", "other"}, std::nullopt},
        {{"OFF"}, std::nullopt},
        {{"off "}, std::nullopt},
        {{"off", ""}, std::nullopt},
        {{"toggle", "laser", "x"}, std::nullopt},
    };
    for (const auto& [words, command, startsProgram] : cases) {
        const auto parsed = parseCommand(words);
        EXPECT_EQ(parsed, command) << testing::PrintToString(words);
        EXPECT_EQ(parsed && parsed->startsProgram(), startsProgram)
            << testing::PrintToString(words);
    }
}

} // namespace
} // namespace vantrel
