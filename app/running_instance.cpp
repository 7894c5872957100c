#include "app/running_instance.h"

#include "platform/x11/instance.h"

#include <chrono>
#include <cstdio>
#include <thread>

namespace vantrel {

namespace {

constexpr std::chrono::seconds patience(5);
constexpr std::chrono::milliseconds retryInterval(10);

using Status = CommandAnswer::Status;

} // namespace

std::optional<CommandAnswer> askRunningInstance(const x11::Connection& connection,
                                                const CommandWords& words, const Command& command) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    const auto unanswered = failure("it runs on this display, and does not answer");
    while (const auto address = x11::Instance::find(connection)) {
        if (auto call = CommandCall::open(*address)) {
            const auto outcome = call->ask(words, deadline);
            if (const auto* answer = std::get_if<CommandAnswer>(&outcome)) {
                const bool awaited = command.action != Command::Action::quit ||
                                     answer->status != Status::done || call->awaitEnd(deadline);
                return awaited ? *answer : failure("it does not end");
            }
            if (std::get<CommandCall::Failure>(outcome) == CommandCall::Failure::unanswered) {
                return unanswered;
            }
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            return unanswered;
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
    if (answer.status == Status::done) {
        if (!answer.text.empty()) {
            std::puts(answer.text.c_str());
        }
    } else {
        std::fprintf(stderr, "vantrel: %s\n", answer.text.c_str());
    }
    return static_cast<int>(answer.status);
}

} // namespace vantrel
