#include "app/running_instance.h"

#include "platform/x11/instance.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <thread>

#include <unistd.h>

namespace vantrel {

namespace {

constexpr std::chrono::seconds patience(5);
constexpr std::chrono::seconds patienceWithServer(7); // longer, as it includes the former
constexpr std::chrono::milliseconds retryInterval(10);

using Status = CommandAnswer::Status;
using Failure = CommandCall::Failure;

CommandCall::Outcome<CommandAnswer> askAt(const std::string& address, const CommandWords& words,
                                          const Command& command, CommandCall::Deadline deadline) {
    auto opened = CommandCall::open(address);
    auto* call = std::get_if<CommandCall>(&opened);
    if (call == nullptr) {
        return std::get<Failure>(opened);
    }
    auto outcome = call->ask(words, deadline);
    const auto* answer = std::get_if<CommandAnswer>(&outcome);
    const bool ends = command.action == Command::Action::quit && answer != nullptr &&
                      answer->status == Status::done;
    return !ends || call->awaitEnd(deadline) ? outcome : failure("it does not end");
}

} // namespace

ServerPatience::ServerPatience() {
    std::signal(SIGALRM, [](int) {
        constexpr std::string_view message("vantrel: no answer from the X server\n");
        [[maybe_unused]] const auto written = write(STDERR_FILENO, message.data(), message.size());
        _exit(EXIT_FAILURE);
    });
    alarm(static_cast<unsigned>(patienceWithServer.count()));
}

ServerPatience::~ServerPatience() {
    alarm(0);
    std::signal(SIGALRM, SIG_DFL);
}

std::optional<CommandAnswer> askRunningInstance(const x11::Connection& connection,
                                                const CommandWords& words, const Command& command) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (const auto address = x11::Instance::find(connection)) {
        const auto outcome = askAt(*address, words, command, deadline);
        if (const auto* answer = std::get_if<CommandAnswer>(&outcome)) {
            return *answer;
        }
        if (std::get<Failure>(outcome) == Failure::stranger) {
            return failure("another user's program stands in its place on this display");
        }
        if (std::get<Failure>(outcome) == Failure::unanswered ||
            std::chrono::steady_clock::now() >= deadline) {
            return failure("it runs on this display, and does not answer");
        }
        // It is ending.
        std::this_thread::sleep_for(retryInterval);
    }
    return std::nullopt;
}

CommandAnswer failure(std::string text) {
    return {.status = Status::failed, .text = std::move(text)};
}

int report(const CommandAnswer& answer) {
    if (answer.status != Status::done) {
        std::fprintf(stderr, "vantrel: %s\n", answer.text.c_str());
    } else if (!answer.text.empty()) {
        std::puts(answer.text.c_str());
        if (std::fflush(stdout) != 0) {
            std::perror("vantrel");
            return EXIT_FAILURE;
        }
    }
    return static_cast<int>(answer.status);
}

} // namespace vantrel
