#include "app/entry/background.h"
#include "app/entry/command_language.h"
#include "app/entry/running_instance.h"
#include "app/entry/start.h"
#include "platform/freedesktop/session_address.h"
#include "platform/x11/connection.h"

#include <chrono>
#include <functional>
#include <optional>

namespace vantrel {
namespace {

constexpr std::chrono::seconds startTimeout(30);

using Status = CommandAnswer::Status;

// Nothing when no instance runs.
std::optional<CommandAnswer> giveCommand(const CommandWords& words, const Command& command) {
    if (const auto session = sessionAddress()) {
        return askRunningInstance(instanceAt(*session), words, command);
    }
    const ServerTimeout serverTimeout;
    x11::ConnectionError error;
    const auto connection = x11::Connection::open({}, error);
    return connection ? askRunningInstance(instanceOn(*connection), words, command)
                      : unreachable(error);
}

int runCommand(const Start& start) {
    if (const auto answer = giveCommand(start.words, start.command)) {
        return report(*answer);
    }
    if (!start.command.startsProgram()) {
        return report({.status = Status::notRunning,
                       .text = said("not running on this display", "未在此显示器上运行")});
    }
    return runInBackground(startTimeout, [&start](std::function<void()> ready) {
        Start again = start;
        again.launched = std::move(ready);
        return again.runProgram(again);
    });
}

} // namespace
} // namespace vantrel

extern "C" __attribute__((visibility("default"))) int
vantrelRunCommand(const vantrel::Start& start) {
    return vantrel::runCommand(start);
}
