#include "support/event_loop.h"

#include "platform/freedesktop/command_packets.h"
#include "platform/freedesktop/command_socket.h"
#include "platform/freedesktop/local_socket_address.h"
#include "platform/freedesktop/session_address.h"

#include <gmock/gmock.h>

#include <future>

#include <poll.h>
#include <sys/wait.h>

namespace vantrel {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using Outcome = CommandCall::Outcome<CommandAnswer>;
using Failure = CommandCall::Failure;

constexpr uid_t somebodyElse = 65534;

// In a thread of its own, as a process of its own would.
std::future<Outcome> ask(const std::string& address, const CommandRequest& request,
                         std::chrono::milliseconds timeout = 10s) {
    return std::async(std::launch::async, [=] {
        auto opened = CommandCall::open(address);
        auto* call = std::get_if<CommandCall>(&opened);
        return call != nullptr ? call->ask(request, std::chrono::steady_clock::now() + timeout)
                               : std::get<Failure>(opened);
    });
}

Outcome answerOf(std::future<Outcome>& call) {
    EXPECT_TRUE(runUntil([&] { return call.wait_for(0s) == std::future_status::ready; }));
    return call.get();
}

UniqueDescriptor connectedTo(const std::string& address) {
    UniqueDescriptor caller(socket(AF_UNIX, commandSocketKind, 0));
    const auto name = LocalSocketAddress::ofName(address);
    EXPECT_EQ(connect(caller.get(), name->data(), name->size), 0);
    return caller;
}

class CommandSocketTest : public testing::Test {
protected:
    void listen() {
        socket->setHandler([this](const CommandRequest& request) -> CommandAnswer {
            heard.push_back(request);
            return {.status = CommandAnswer::Status::failed, .text = "as told"};
        });
    }

    std::optional<CommandSocket> socket{std::in_place};
    std::vector<CommandRequest> heard;
};

TEST_F(CommandSocketTest, AnswersEachCommandInTurnAlsoThoseThatCameBefore) {
    const std::vector<CommandRequest> commands{
        {}, {{"status", "--json"}}, {{"", "\n", "ü"}}, {{}, "token"}, {{"settings"}, "token"}};
    std::vector<std::future<Outcome>> calls;
    for (const auto& request : commands) {
        calls.push_back(ask(socket->address(), request));
    }
    listen();
    for (auto& call : calls) {
        const Outcome expected =
            CommandAnswer{.status = CommandAnswer::Status::failed, .text = "as told"};
        EXPECT_EQ(answerOf(call), expected);
    }
    EXPECT_THAT(heard, testing::UnorderedElementsAreArray(commands));
}

TEST_F(CommandSocketTest, HearsNothingOfTooMuchAndGoesOn) {
    listen();
    const auto caller = connectedTo(socket->address());
    EXPECT_TRUE(sendPacket(caller.get(), std::string(100'000, 'x')));
    auto call = ask(socket->address(), {{"off"}});
    EXPECT_TRUE(std::holds_alternative<CommandAnswer>(answerOf(call)));
    EXPECT_THAT(heard, ElementsAre(CommandRequest{{"off"}}));
}

TEST_F(CommandSocketTest, DoesNothingForACallerThatHasGivenUp) {
    auto impatient = ask(socket->address(), {{"quit"}}, 50ms);
    EXPECT_EQ(answerOf(impatient), Outcome(Failure::unanswered));
    listen();
    auto call = ask(socket->address(), {{"off"}});
    EXPECT_TRUE(std::holds_alternative<CommandAnswer>(answerOf(call)));
    EXPECT_THAT(heard, ElementsAre(CommandRequest{{"off"}}));
}

TEST_F(CommandSocketTest, TellsOfAProgramThatHasGone) {
    const std::string address = socket->address();
    auto call = CommandCall::open(address);
    ASSERT_TRUE(std::holds_alternative<CommandCall>(call));
    socket.reset();
    EXPECT_EQ(std::get<CommandCall>(call).ask({{"off"}}, std::chrono::steady_clock::now() + 10s),
              Outcome(Failure::gone));
    for (const auto& nobody : {address, std::string(), std::string(1000, 'x')}) {
        EXPECT_EQ(std::get<Failure>(CommandCall::open(nobody)), Failure::gone);
    }
}

TEST_F(CommandSocketTest, LetsOneProgramHaveAnAddress) {
    const std::string address = "vantrel-test-" + std::to_string(getpid());
    EXPECT_FALSE(isTaken(address));
    socket.emplace(address);
    EXPECT_EQ(socket->address(), address);
    EXPECT_TRUE(isTaken(address));
    EXPECT_EQ(CommandSocket(address).address(), "");
    socket.reset();
    EXPECT_EQ(CommandSocket(address).address(), address);
}

// How a process of another user ends that runs this.
template <typename Attempt>
int asSomebodyElse(Attempt attempt) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(setuid(somebodyElse) == 0 ? attempt() : 100);
    }
    int status = 0;
    EXPECT_TRUE(runUntil([&] { return waitpid(child, &status, WNOHANG) == child; }));
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(CommandSocketTest, HearsNobodyElseAndIsNotTakenInByThem) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can be somebody else";
    }
    listen();
    const auto address = socket->address();
    EXPECT_EQ(asSomebodyElse([&] {
                  const auto opened = CommandCall::open(address);
                  const auto* failure = std::get_if<Failure>(&opened);
                  return failure != nullptr && *failure == Failure::otherUser ? 0 : 1;
              }),
              0)
        << "the caller speaks to another user's program";
    EXPECT_EQ(asSomebodyElse([&] {
                  const auto caller = connectedTo(address);
                  sendPacket(caller.get(), encoded(CommandRequest{{"off"}}));
                  pollfd end{caller.get(), POLLIN, 0};
                  return poll(&end, 1, 10'000) == 1 && !receivePacket(caller.get()) ? 0 : 1;
              }),
              0)
        << "it was answered";
    EXPECT_TRUE(heard.empty());
}

} // namespace
} // namespace vantrel
