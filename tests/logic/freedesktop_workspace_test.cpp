#include "support/event_loop.h"
#include "support/freedesktop_support.h"
#include "support/mock_login_manager.h"

#include "platform/freedesktop/desktop_workspace.h"
#include "platform/freedesktop/termination_signals.h"

#include <gmock/gmock.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <sys/wait.h>
#include <vector>

namespace vantrel {
namespace {

using std::filesystem::path;
using testing::ElementsAre;

class LoginManagerEvents : public testing::Test {
protected:
    [[nodiscard]] bool isHeld() const {
        return mock->sleepLocks() == 1 && mock->shutdownLocks() == 1;
    }
    [[nodiscard]] bool waitUntilHeld() {
        return runUntil([this] { return isHeld(); });
    }

    std::optional<desktop::PrivateBus> bus{std::in_place, privateBusSocket()};
    std::optional<MockLoginManager> mock{std::in_place};
    std::optional<LoginManager> manager{std::in_place, std::chrono::milliseconds(20)};
    std::vector<std::string> events;
    Subscription sleeping = manager->onWillSleep([this] { events.emplace_back("sleep"); });
    Subscription waking = manager->onDidWake([this] { events.emplace_back("wake"); });
};

TEST_F(LoginManagerEvents, ComeOnceForEachChangeAndHoldTheMachineMeanwhile) {
    std::vector<int> locks;
    const auto saving = manager->onWillSleep([&] { locks.push_back(mock->sleepLocks()); });
    ASSERT_TRUE(waitUntilHeld());
    for (const bool going : {false, true, true, false, false, true, false}) {
        mock->announce("PrepareForSleep", going);
    }
    ASSERT_TRUE(runUntil([this] { return events.size() >= 4; }));
    ASSERT_TRUE(waitUntilHeld());
    EXPECT_THAT(events, ElementsAre("sleep", "wake", "sleep", "wake"));
    EXPECT_EQ(locks.front(), 1);
}

TEST_F(LoginManagerEvents, ComeFromALoginManagerThatAppearsLaterOrRestarts) {
    mock.reset();
    QCoreApplication::processEvents();
    for (int start = 0; start < 2; ++start) {
        mock.emplace();
        ASSERT_TRUE(waitUntilHeld());
        events.clear();
        mock->announce("PrepareForSleep", true);
        ASSERT_TRUE(runUntil([this] { return !events.empty() && mock->sleepLocks() == 0; }));
        // It goes without a word of waking: the machine counts as awake.
        mock.reset();
        ASSERT_TRUE(runUntil([this] { return events.size() == 2; }));
        EXPECT_THAT(events, ElementsAre("sleep", "wake"));
    }
}

TEST_F(LoginManagerEvents, ComeAgainAfterTheBusHasDied) {
    ASSERT_TRUE(waitUntilHeld());
    mock->announce("PrepareForSleep", true);
    ASSERT_TRUE(runUntil([this] { return mock->sleepLocks() == 0; }));
    bus.reset();
    ASSERT_TRUE(runUntil([this] { return events.size() == 2; }));
    EXPECT_THAT(events, ElementsAre("sleep", "wake"));

    mock.reset();
    bus.emplace(privateBusSocket());
    mock.emplace();
    ASSERT_TRUE(waitUntilHeld());
    mock->announce("PrepareForSleep", true);
    EXPECT_TRUE(runUntil([this] { return events.size() == 3; }));
}

TEST_F(LoginManagerEvents, AreTakenFromNobodyElseOnTheBus) {
    ASSERT_TRUE(waitUntilHeld());
    auto otherUser =
        QDBusConnection::connectToBus(privateBusAddress(), QStringLiteral("otherUser"));
    auto message = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/login1"),
                                              QStringLiteral("org.freedesktop.login1.Manager"),
                                              QStringLiteral("PrepareForSleep"));
    message << true;
    otherUser.send(message);
    // The answer comes after the bus has passed the signal on.
    otherUser.call(QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId")));
    QDBusConnection::disconnectFromBus(QStringLiteral("otherUser"));

    const auto ending = manager->onWillShutDown([this] { events.emplace_back("end"); });
    mock->announce("PrepareForShutdown", true);
    ASSERT_TRUE(runUntil([this] { return !events.empty(); }));
    EXPECT_THAT(events, ElementsAre("end"));
}

TEST_F(LoginManagerEvents, AreWaitedForWithoutHoldingTheProgramUp) {
    manager.reset();
    mock.reset();
    bus.reset();
    std::optional<desktop::SilentBus> silent(std::in_place, privateBusSocket());
    QElapsedTimer elapsed;
    elapsed.start();
    manager.emplace(std::chrono::milliseconds(20));
    sleeping = manager->onWillSleep([this] { events.emplace_back("sleep"); });
    int turns = 0;
    EXPECT_TRUE(runUntil([&] { return ++turns > 20; }));
    EXPECT_LT(elapsed.elapsed(), 2'000);
    EXPECT_TRUE(events.empty());

    silent.reset();
    bus.emplace(privateBusSocket());
    mock.emplace();
    ASSERT_TRUE(waitUntilHeld());
    mock->announce("PrepareForSleep", true);
    EXPECT_TRUE(runUntil([this] { return !events.empty(); }));
}

bool hasChildren() {
    siginfo_t info{};
    return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

// What the stand-in for the desktop's opener was asked for, and the signals that it has blocked.
TEST(UrlOpening, HandsTheUrlToTheDesktopsOpener) {
    const TemporaryFolder folder;
    const path result = folder / "result";
    putProgram(folder / "xdg-open", "#!/bin/sh\n"
                                    "{ echo \"$# $1\"; while read -r name value; do\n"
                                    "[ \"$name\" = SigBlk: ] && echo \"$value\"; done; } "
                                    "</proc/self/status >" +
                                        (folder / "part").string() + "\nmv " +
                                        (folder / "part").string() + " " + result.string() + "\n");
    const TerminationSignals blocked([] {});
    const ScopedVariable programs("PATH", folder.path().string() + ":/usr/bin:/bin");
    DesktopWorkspace workspace;
    EXPECT_TRUE(workspace.openUrl("https://example.org/a?b=c&d='e f'"));
    EXPECT_TRUE(runUntil([&] { return std::filesystem::exists(result); }));
    EXPECT_EQ(contentOf(result), "1 https://example.org/a?b=c&d='e f'\n0000000000000000\n");

    EXPECT_TRUE(runUntil([] { return !hasChildren(); })) << "a zombie is left";
    QCoreApplication::processEvents(); // its end may be known before the toolkit has heard of it
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    for (const char* option : {"", "--help"}) {
        EXPECT_FALSE(workspace.openUrl(option));
    }
}

TEST(UrlOpening, FailsWhereTheDesktopHasNoOpener) {
    const TemporaryFolder folder;
    const ScopedVariable programs("PATH", folder.path());
    EXPECT_FALSE(DesktopWorkspace().openUrl("https://example.org/"));
}

} // namespace
} // namespace vantrel

int main(int argc, char** argv) {
    const std::string address = vantrel::privateBusAddress().toStdString();
    setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
