#include "app/entry/running_instance.h"

#include "app/entry/command_language.h"

#include "platform/freedesktop/session_address.h"
#include "platform/x11/instance.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string_view>
#include <thread>

#include <unistd.h>

namespace vantrel {

namespace {

constexpr std::chrono::seconds answerTimeout(5);
constexpr std::chrono::seconds serverTimeout(7); // longer, as it includes the former
constexpr std::chrono::milliseconds retryInterval(10);

using Status = CommandAnswer::Status;
using Failure = CommandCall::Failure;

// Of a command that may bring a window to the front; others would leave it to be used too late.
std::string tokenFor(const Command& command) {
    const char* token = std::getenv(activationToken);
    return token != nullptr && (command.isStart() || command.opensSettings()) ? token : "";
}

CommandCall::Outcome<CommandAnswer> askAt(const std::string& address, const CommandWords& words,
                                          const Command& command, CommandCall::Deadline deadline) {
    auto opened = CommandCall::open(address);
    auto* call = std::get_if<CommandCall>(&opened);
    if (call == nullptr) {
        return std::get<Failure>(opened);
    }
    auto outcome = call->ask({words, tokenFor(command)}, deadline);
    const auto* answer = std::get_if<CommandAnswer>(&outcome);
    const bool ends = command.action == Command::Action::quit && answer != nullptr &&
                      answer->status == Status::done;
    return !ends || call->awaitEnd(deadline)
               ? outcome
               : failure(said("timed out while quitting", "退出超时"));
}

} // namespace

ServerTimeout::ServerTimeout() {
    // Nothing may be allocated once the signal comes.
    static const std::string message =
        said("vantrel: no answer from the X server\n", "vantrel: X 服务器没有响应\n");
    std::signal(SIGALRM, [](int) {
        [[maybe_unused]] const auto written = write(STDERR_FILENO, message.data(), message.size());
        _exit(EXIT_FAILURE);
    });
    alarm(static_cast<unsigned>(serverTimeout.count()));
}

ServerTimeout::~ServerTimeout() {
    alarm(0);
    std::signal(SIGALRM, SIG_DFL);
}

FindInstance instanceAt(const std::string& sessionAddress) {
    return [sessionAddress] {
        return isTaken(sessionAddress) ? std::optional(sessionAddress) : std::nullopt;
    };
}

FindInstance instanceOn(const x11::Connection& connection) {
    return [&connection] { return x11::Instance::find(connection); };
}

std::optional<CommandAnswer> askRunningInstance(const FindInstance& find, const CommandWords& words,
                                                const Command& command) {
    const auto deadline = std::chrono::steady_clock::now() + answerTimeout;
    while (const auto address = find()) {
        const auto outcome = askAt(*address, words, command, deadline);
        if (const auto* answer = std::get_if<CommandAnswer>(&outcome)) {
            return *answer;
        }
        if (std::get<Failure>(outcome) == Failure::otherUser) {
            return failure(said("another user is already running Vantrel on this display",
                                "其他用户已在此显示器上运行 Vantrel"));
        }
        if (std::get<Failure>(outcome) == Failure::unanswered ||
            std::chrono::steady_clock::now() >= deadline) {
            return failure(said("already running on this display, but not responding",
                                "已在此显示器上运行，但没有响应"));
        }
        // It is ending.
        std::this_thread::sleep_for(retryInterval);
    }
    return std::nullopt;
}

CommandAnswer unreachable(const x11::ConnectionError& error) {
    const char* compositor = std::getenv("WAYLAND_DISPLAY");
    const char* server = std::getenv("DISPLAY");
    if (compositor == nullptr || server != nullptr) {
        return failure(said(error.english, error.chinese));
    }
    const auto name = " \"" + std::string(compositor) + "\"";
    return failure(
        said("cannot connect to the Wayland compositor" + name, "无法连接 Wayland 合成器" + name));
}

} // namespace vantrel
