#include "support/event_loop.h"

#include "platform/absent.h"
#include "platform/freedesktop/qt_main_queue.h"
#include "platform/freedesktop/session_hot_keys.h"
#include "platform/freedesktop/termination_signals.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <limits>
#include <optional>
#include <semaphore>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace vantrel {
namespace {

using Clock = std::chrono::steady_clock;
using testing::ElementsAre;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

TEST(MainQueue, CallsInTheOrderOfTheirTimesAndNeverAtOnce) {
    QtMainQueue queue;
    std::vector<int> calls;
    const auto fifth = queue.after(0.03, [&] { calls.push_back(5); });
    const auto fourth = queue.after(0.02, [&] { calls.push_back(4); });
    const auto never = queue.after(std::numeric_limits<double>::infinity(), [&] { FAIL(); });
    queue.async([&] {
        calls.push_back(1);
        queue.async([&] { calls.push_back(3); });
    });
    queue.async([&] { calls.push_back(2); });
    EXPECT_TRUE(calls.empty());
    EXPECT_TRUE(runUntil([&] { return calls.size() == 5; }));
    EXPECT_THAT(calls, ElementsAre(1, 2, 3, 4, 5));
}

TEST(MainQueue, CallsAfterTheDelayAndNeverBefore) {
    QtMainQueue queue;
    for (const double delay : {0.25, 0.0209, 0.0009, 0.0, -1.0}) {
        bool called = false;
        const auto start = Clock::now();
        const auto waiting = queue.after(delay, [&] { called = true; });
        EXPECT_TRUE(runUntil([&] { return called; }));
        EXPECT_GE(secondsSince(start), delay);
        EXPECT_LT(secondsSince(start), std::max(delay, 0.0) + 1);
    }
}

TEST(MainQueue, DropsACallWhoseSubscriptionHasEnded) {
    QtMainQueue queue;
    std::optional<Subscription> last;
    Subscription second;
    Subscription pending;
    int called = 0;
    for (int i = 1; i <= 1000; ++i) {
        pending = queue.after(0.001, [&called, i] { called = called == 0 ? i : -1; });
    }
    // Even from within a call that was due at the same time.
    const auto first = queue.after(0, [&] { second.cancel(); });
    second = queue.after(0, [] { FAIL(); });
    last = queue.after(0, [&] { last.reset(); });
    EXPECT_TRUE(runUntil([&] { return called != 0; }));
    EXPECT_EQ(called, 1000);
    EXPECT_FALSE(last);
}

TEST(MainQueue, LeavesSubscriptionsHarmlessWhenItGoes) {
    std::optional<QtMainQueue> queue(std::in_place);
    queue->async([] { FAIL(); });
    Subscription waiting = queue->after(0, [] { FAIL(); });
    queue.reset();
    waiting.cancel();
    QCoreApplication::processEvents();
}

TEST(TerminationSignals, CallOnceFromTheEventLoopUnlessTheParentHadIgnoredThem) {
    signal(SIGHUP, SIG_IGN);
    int calls = 0;
    {
        const TerminationSignals signals([&] { ++calls; });
        kill(getpid(), SIGHUP);
        for (const int number : {SIGTERM, SIGINT}) {
            calls = 0;
            kill(getpid(), number);
            EXPECT_EQ(calls, 0);
            EXPECT_TRUE(runUntil([&] { return calls > 0; })) << strsignal(number);
            QCoreApplication::processEvents();
            EXPECT_EQ(calls, 1);
        }
    }
    signal(SIGHUP, SIG_DFL);
}

TEST(TerminationSignals, SpareTheThreadsThatStartAfterThemAndWaitForTheirReceiver) {
    TerminationSignals signals;
    std::binary_semaphore end(0);
    std::jthread toolkit([&] { end.acquire(); });
    kill(getpid(), SIGTERM);
    int calls = 0;
    signals.deliverTo([&] { ++calls; });
    EXPECT_TRUE(runUntil([&] { return calls == 1; }));
    end.release();
}

TEST(TerminationSignals, EndTheProcessAgainWhenNobodyTakesThem) {
    const pid_t child = fork();
    if (child == 0) {
        {
            const TerminationSignals signals([] {});
            kill(getpid(), SIGTERM); // too late to be called for, too early to be killed by
        }
        kill(getpid(), SIGINT);
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) << status;
}

class FakeGrabber final : public KeyGrabber {
public:
    [[nodiscard]] bool takesKeys() const override { return true; }
    [[nodiscard]] Subscription onKeysChange(std::function<void()> callback) override {
        return changes.add(std::move(callback));
    }
    void grab(const std::vector<KeyGrab>& grabs) override { grabbed = grabs; }
    void leaveKeys(bool /*left*/) override {}
    [[nodiscard]] bool canLeaveKeys() const override { return false; }

    Observers<> changes;
    std::vector<KeyGrab> grabbed;
};

TEST(SessionHotKeysTest, GivesUpWhatIsRefusedUntilTheSessionsKeysChange) {
    FakeGrabber grabber;
    NoHotKeys others;
    SessionHotKeys keys(grabber, others, [](auto code) { return std::optional(code + 8); });
    std::vector<HotKeys::Ref> refs;
    const auto registerAll = [&] {
        for (const auto ref : std::exchange(refs, {})) {
            keys.unregister(ref);
        }
        for (const std::uint32_t number : {1U, 2U}) {
            if (const auto ref = keys.register_(30 + number, modifier::control, {.id = number})) {
                refs.push_back(*ref);
            }
        }
    };
    keys.setLossHandler(registerAll);
    const auto comesToGrab = [&](const std::vector<std::uint32_t>& numbers) {
        return runUntil(
            [&] { return std::ranges::equal(grabber.grabbed, numbers, {}, &KeyGrab::number); });
    };
    registerAll();
    EXPECT_TRUE(comesToGrab({1, 2}));
    for (int i = 0; i < 2; ++i) {
        grabber.onRefused({1});
        EXPECT_TRUE(comesToGrab({2}));
        registerAll(); // as at each change of a setting
        EXPECT_EQ(refs.size(), 1U);
        EXPECT_TRUE(comesToGrab({2}));
        grabber.changes.notify();
        EXPECT_TRUE(comesToGrab({1, 2}));
        EXPECT_EQ(refs.size(), 2U);
    }
}

} // namespace
} // namespace vantrel

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
