#include "support/event_loop.h"
#include "support/shell_fixture.h"
#include "testdesk/core_application.h"
#include "testdesk/private_bus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>

#include <thread>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

struct Outcome {
    std::optional<ExitStatus> status;
    std::string output;
    std::string errors;
};

// Commands to the program, as a shell gives them.
class ControlTest : public ShellTest {
protected:
    ControlTest() { writePreferences(server.folder() / "config", preferencesShowing("off")); }
    // What was started in the background ends with its server otherwise, without a word.
    ~ControlTest() override { command({"quit"}); }

    ChildProcess startCommand(std::vector<std::string> words, const std::string& log = "command") {
        return start({.preferences = nullptr,
                      .arguments = std::move(words),
                      .environment = environment,
                      .log = log});
    }
    Outcome command(std::vector<std::string> words) {
        const auto status = startCommand(std::move(words)).wait(20s);
        return {status, readFile(server.folder() / "command.out"),
                readFile(server.folder() / "command.err")};
    }
    // Whether it was done and said nothing but that.
    testing::AssertionResult says(std::vector<std::string> words, const std::string& text = "") {
        const auto [status, output, errors] = command(std::move(words));
        const auto expected = text.empty() ? text : text + "\n";
        return status == ExitStatus{.code = 0} && output == expected && errors.empty()
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure()
                         << output << errors << (status ? "" : "it did not return");
    }
    // Returns when it takes commands.
    ChildProcess startProgram() {
        auto program = start({.preferences = nullptr, .environment = environment});
        EXPECT_TRUE(
            waitFor([this] { return command({"status"}).status == ExitStatus{.code = 0}; }));
        return program;
    }

    Environment environment;
};

TEST_F(ControlTest, CommandsReachTheRunningProgram) {
    environment["QT_QPA_PLATFORM"] = "wayland"; // as some people set it for all programs
    auto program = startProgram();
    EXPECT_TRUE(says({"highlight"}));
    EXPECT_TRUE(shown(overlay));
    EXPECT_TRUE(says({"status"}, "highlight"));
    EXPECT_TRUE(says({"toggle", "laser"}));
    EXPECT_TRUE(says({"status"}, "laser"));
    EXPECT_TRUE(says({"toggle", "laser"}));
    EXPECT_TRUE(isGone(overlay));
    EXPECT_TRUE(says({"laser"}));
    EXPECT_TRUE(says({"status", "--settings"}, "laser"));
    EXPECT_TRUE(shown(settings));
    const auto status = nlohmann::json::parse(command({"status", "--json"}).output);
    EXPECT_EQ(status.at("mode"), "laser");
    EXPECT_EQ(status.at("clickAvailable"), true);
    EXPECT_EQ(status.at("hotkeyError"), nullptr);

    // By then it has saved.
    EXPECT_TRUE(says({"quit"}));
    EXPECT_EQ(storedMode(), "laser");
    EXPECT_EQ(program.wait(1s), (ExitStatus{.code = 0}));
    EXPECT_EQ(errors(), "");
}

TEST_F(ControlTest, CommandsForSomethingToSeeStartTheProgramInTheBackground) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> commands{
        {{"highlight"}, "highlight"},
        {{"laser"}, "laser"},
        {{"toggle", "laser"}, "laser"}, // which was the last one as well
        {{"settings"}, "laser"}};
    for (const auto& [words, mode] : commands) {
        EXPECT_TRUE(says(words));
        EXPECT_TRUE(says({"status"}, mode));
        EXPECT_TRUE(shown(overlay));
        EXPECT_EQ(shown(settings, 0ms).has_value(), words.front() == "settings");
        EXPECT_TRUE(says({"quit"}));
    }
}

TEST_F(ControlTest, StartsAndCommandsAtTheSameMomentLeaveOneProgram) {
    for (int round = 0; round < 3; ++round) {
        std::vector<ChildProcess> programs;
        programs.push_back(startCommand({}, "one"));
        programs.push_back(startCommand({}, "two"));
        for (const char* log : {"three", "four"}) {
            EXPECT_EQ(startCommand({"laser"}, log).wait(20s), (ExitStatus{.code = 0}));
        }
        const auto running = [&] {
            return std::ranges::count_if(programs, [](ChildProcess& p) { return p.running(); });
        };
        EXPECT_TRUE(waitFor([&] { return running() <= 1; }));
        EXPECT_TRUE(says({"status"}, "laser"));
        EXPECT_TRUE(says({"quit"}));
        EXPECT_TRUE(waitFor([&] { return running() == 0; }));
        EXPECT_EQ(command({"status"}).status, (ExitStatus{.code = 3})) << "there was another one";
    }
}

TEST_F(ControlTest, WhatCannotBeDoneIsSaid) {
    for (const char* word : {"off", "status", "quit"}) {
        const auto [status, output, errors] = command({word});
        EXPECT_EQ(status, (ExitStatus{.code = 3}));
        EXPECT_EQ(output + errors, "vantrel: not running on this display\n");
    }
    const auto nonsense = command({"toggle", "everything"});
    EXPECT_EQ(nonsense.status, (ExitStatus{.code = 2}));
    EXPECT_THAT(nonsense.errors, HasSubstr("toggle everything"));
    for (const auto& [display, message] :
         {std::pair(":987654", "X server \":987654\""), std::pair("", "DISPLAY is not set")}) {
        environment["DISPLAY"] = display;
        for (const char* word : {"off", "highlight"}) {
            const auto unreachable = command({word});
            EXPECT_EQ(unreachable.status, (ExitStatus{.code = 1}));
            EXPECT_THAT(unreachable.errors, HasSubstr(message));
        }
    }
}

// A session is known by where its compositor listens, and its X server is not asked.
TEST_F(ControlTest, TheInstanceOfAWaylandSessionIsFoundWithoutItsXServer) {
    const SilentBus compositor(server.folder() / "runtime" / "wayland-0");
    const SilentBus another(server.folder() / "runtime" / "wayland-1");
    environment["WAYLAND_DISPLAY"] = "wayland-0";
    const auto program = startProgram();
    EXPECT_TRUE(says({"laser"}));
    const auto shownTo = [&](const std::string& compositorName, const std::string& serverName) {
        environment["WAYLAND_DISPLAY"] = compositorName;
        environment["DISPLAY"] = serverName;
        const auto outcome = command({"status"});
        return outcome.output + outcome.errors;
    };
    const auto& display = server.display();
    const auto path = server.folder() / "runtime" / "." / "wayland-0";
    EXPECT_EQ(shownTo("wayland-0", ":987654"), "laser\n");
    EXPECT_EQ(shownTo(path, ""), "laser\n");
    EXPECT_EQ(shownTo("", display), "laser\n");
    EXPECT_EQ(shownTo("wayland-2", display), "laser\n");
    EXPECT_EQ(shownTo("wayland-1", display), "vantrel: not running on this display\n");
    EXPECT_THAT(shownTo("wayland-2", ""), HasSubstr("compositor \"wayland-2\""));
    environment = {{"WAYLAND_DISPLAY", "wayland-0"}, {"DISPLAY", display}};
    EXPECT_TRUE(says({"off"}));
    environment["DISPLAY"] = "";
    EXPECT_TRUE(says({})) << "another one was started";
}

// Of a caller that has closed these descriptors, has more of them open, or listens to none.
TEST_F(ControlTest, CommandsTakeNothingFromTheirCallerForGranted) {
    const auto shell = [this](const std::string& script) {
        return ChildProcess({.arguments = {"sh", "-c", script, "sh", programUnderTest()},
                             .environment = server.environment(),
                             .output = server.folder() / "shell.out"})
            .wait(20s);
    };
    EXPECT_EQ(shell(R"("$1" laser <&- >&- 2>&-)"), (ExitStatus{.code = 0}));
    EXPECT_TRUE(says({"status"}, "laser"));
    EXPECT_EQ(shell(R"("$1" status >/dev/full)"), (ExitStatus{.code = 1}));
    EXPECT_TRUE(says({"quit"}));

    // The lock goes with the last who has its file open.
    const std::string lock = server.folder() / "lock";
    EXPECT_EQ(shell("trap '' CHLD; exec 9>" + lock + R"(; flock 9 && "$1" laser)"),
              (ExitStatus{.code = 0}));
    EXPECT_EQ(shell("flock --nonblock " + lock + " true"), (ExitStatus{.code = 0}));
    EXPECT_TRUE(says({"status"}, "laser"));
}

TEST_F(ControlTest, CommandsDoWithoutTheToolkit) {
    environment["LD_DEBUG"] = "files";
    const auto libraries = command({"status"}).errors;
    EXPECT_THAT(libraries, HasSubstr("libxcb.so"));
    EXPECT_THAT(libraries, testing::Not(HasSubstr("libQt")));
}

TEST_F(ControlTest, TheCommandLineSpeaksTheLanguageOfTheWindows) {
    environment["LC_ALL"] = "zh_CN.UTF-8";
    EXPECT_EQ(command({"status"}).errors, "vantrel: 未在此显示器上运行\n");
    EXPECT_THAT(command({"--help"}).output, HasSubstr("用法"));
    auto preferences = preferencesShowing("off");
    preferences["language"] = "english";
    writePreferences(server.folder() / "config", preferences);
    EXPECT_EQ(command({"status"}).errors, "vantrel: not running on this display\n");
}

TEST_F(ControlTest, AProgramOrAServerThatHangsIsNotWaitedForForEver) {
    auto program = startProgram();
    for (const auto& [hanging, message] :
         {std::pair(program.pid(), "not responding"), std::pair(server.pid(), "no answer")}) {
        kill(hanging, SIGSTOP);
        const auto outcome = command({"off"});
        kill(hanging, SIGCONT);
        EXPECT_EQ(outcome.status, (ExitStatus{.code = 1}));
        EXPECT_THAT(outcome.errors, HasSubstr(message));
    }
    EXPECT_TRUE(says({"laser"}));
}

TEST_F(ControlTest, ABusThatSaysNothingHoldsNothingUp) {
    const Tray tray(server);
    for (const bool full : {false, true}) {
        SilentBus bus(server.folder() / "runtime" / "bus");
        if (full) {
            bus.fillQueue();
        }
        environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
        const auto program = startProgram();
        EXPECT_TRUE(says({"highlight"}));
        EXPECT_TRUE(shown(overlay));
        typeShortcut('l');
        EXPECT_TRUE(stores("laser"));
        EXPECT_TRUE(says({"status"}, "laser"));
        EXPECT_EQ(errors(), "vantrel: the session bus does not answer; going on without it\n");
        EXPECT_TRUE(says({"quit"}));
        // Nor is a terminal needed that hears it say so.
        auto all = environment;
        all.merge(server.environment());
        const ChildProcess unheard(
            {.arguments = {"sh", "-c", R"("$1" 2>&1 | true)", "sh", programUnderTest()},
             .environment = all});
        EXPECT_TRUE(waitFor([this] { return says({"status"}, "laser"); }));
        std::this_thread::sleep_for(1500ms);
        EXPECT_TRUE(says({"quit"}));
    }
}

// The same from the bus.
class BusControlTest : public ControlTest {
protected:
    BusControlTest() { environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address(); }
    ~BusControlTest() override { QDBusConnection::disconnectFromBus(client.name()); }

    QDBusMessage call(const char* interface, const char* method, const QVariantList& arguments) {
        auto message = QDBusMessage::createMethodCall(
            QStringLiteral("org.vantrel.Vantrel"), QStringLiteral("/org/vantrel/Vantrel"),
            QLatin1String(interface), QLatin1String(method));
        message.setArguments(arguments);
        return client.call(message);
    }
    // Empty when it was done.
    std::string errorOf(const char* method, const QVariantList& arguments = {}) {
        return call("org.vantrel.Vantrel1", method, arguments).errorName().toStdString();
    }
    QVariant property(const char* which) {
        const auto reply =
            call("org.freedesktop.DBus.Properties", "Get",
                 {QStringLiteral("org.vantrel.Vantrel1"), QString(QLatin1String(which))});
        return reply.type() == QDBusMessage::ReplyMessage
                   ? reply.arguments().constFirst().value<QDBusVariant>().variant()
                   : QVariant();
    }
    bool isOnBus() {
        return runUntil([this] { return property("Mode").isValid(); });
    }

private:
    CoreApplication application_;

protected:
    PrivateBus bus{server.folder() / "runtime" / "bus"};
    QDBusConnection client = QDBusConnection::connectToBus(QString::fromStdString(bus.address()),
                                                           QStringLiteral("control-test"));
};

// Keeps the modes that the bus was told of.
class ModeListener : public QObject {
    Q_OBJECT

public:
    explicit ModeListener(QDBusConnection bus) {
        bus.connect({}, QStringLiteral("/org/vantrel/Vantrel"),
                    QStringLiteral("org.vantrel.Vantrel1"), QStringLiteral("ModeChanged"), this,
                    SLOT(note(QString)));
        bus.connect({}, QStringLiteral("/org/vantrel/Vantrel"),
                    QStringLiteral("org.freedesktop.DBus.Properties"),
                    QStringLiteral("PropertiesChanged"), this,
                    SLOT(noteProperties(QString, QVariantMap, QStringList)));
    }

    std::vector<std::string> modes;
    std::vector<std::string> properties;

private:
    Q_SLOT void note(const QString& mode) { modes.push_back(mode.toStdString()); }
    Q_SLOT void noteProperties(const QString&, const QVariantMap& changes, const QStringList&) {
        if (changes.contains(QStringLiteral("Mode"))) {
            properties.push_back(changes[QStringLiteral("Mode")].toString().toStdString());
        }
    }
};

TEST_F(BusControlTest, TheModeIsSetReadAndAnnounced) {
    auto program = startProgram();
    ASSERT_TRUE(isOnBus());
    ModeListener listener(client);
    EXPECT_EQ(errorOf("SetMode", {QStringLiteral("highlight")}), "");
    EXPECT_EQ(property("Mode"), QStringLiteral("highlight"));
    EXPECT_TRUE(shown(overlay));
    EXPECT_EQ(errorOf("SetMode", {QStringLiteral("highlight")}), "");
    EXPECT_EQ(errorOf("Toggle", {QStringLiteral("laser")}), "");
    EXPECT_TRUE(runUntil([&] { return listener.properties.size() >= 2; }));
    typeShortcut('l');
    const std::vector<std::string> modes{"highlight", "laser", "off"};
    EXPECT_TRUE(
        runUntil([&] { return listener.modes.size() >= 3 && listener.properties.size() >= 3; }));
    EXPECT_EQ(listener.modes, modes);
    EXPECT_EQ(listener.properties, modes);
    EXPECT_EQ(errorOf("ShowSettings"), "");
    EXPECT_TRUE(shown(settings));
    EXPECT_EQ(errorOf("Quit"), "");
    EXPECT_EQ(program.wait(5s), (ExitStatus{.code = 0}));
    EXPECT_EQ(errors(), "");
}

TEST_F(BusControlTest, NonsenseIsRefusedAndChangesNothing) {
    // Newer toolkits tell of each call that they refuse.
    environment["QT_LOGGING_RULES"] = "qt.dbus.integration.warning=false";
    const auto program = startProgram();
    ASSERT_TRUE(isOnBus());
    ModeListener listener(client);
    const auto invalid = "org.freedesktop.DBus.Error.InvalidArgs";
    EXPECT_EQ(errorOf("SetMode", {QStringLiteral("everything")}), invalid);
    EXPECT_EQ(errorOf("Toggle", {QStringLiteral("off")}), invalid);
    EXPECT_EQ(errorOf("deleteLater"), "org.freedesktop.DBus.Error.UnknownMethod");
    EXPECT_NE(call("org.freedesktop.DBus.Properties", "Set",
                   {QStringLiteral("org.vantrel.Vantrel1"), QStringLiteral("Mode"),
                    QVariant::fromValue(QDBusVariant(QStringLiteral("laser")))})
                  .errorName(),
              QString());
    EXPECT_EQ(property("Mode"), QStringLiteral("off"));
    EXPECT_TRUE(listener.modes.empty());
    EXPECT_TRUE(says({"status"}, "off"));
    EXPECT_EQ(errors(), "");
}

TEST_F(BusControlTest, ASecondDisplayIsNextWhenTheFirstHasGone) {
    auto program = startProgram();
    ASSERT_TRUE(isOnBus());
    const auto other = PrivateServer::virtualScreen({800, 600});
    writePreferences(other.folder() / "config", preferencesShowing("laser"));
    auto second = startVantrel(other, programUnderTest(),
                               {.preferences = nullptr, .environment = environment});
    XConnection otherWatcher(other.display());
    ASSERT_TRUE(waitForWindow(otherWatcher, overlay));
    EXPECT_EQ(property("Mode"), QStringLiteral("off"));
    EXPECT_TRUE(says({"quit"}));
    EXPECT_TRUE(runUntil([this] { return property("Mode") == QStringLiteral("laser"); }));
    EXPECT_TRUE(second.running());
}

} // namespace
} // namespace vantrel::desktop

#include "control_desktop_test.moc"
