#include "measurements.h"

#include "testdesk/private_bus.h"
#include "testdesk/vantrel_program.h"
#include "testdesk/wait.h"

#include <stdexcept>

namespace vantrel::bench {
namespace {

using Words = std::vector<std::string>;

// A session with a bus, on which the program runs if there is one.
class Session {
public:
    explicit Session(const Contenders& contenders)
        : environment_(server_.environment()),
          command_(contenders.reacts ? Words{contenders.program.command.front(), "status"}
                                     : emptyCall("org.freedesktop.DBus", "/")),
          emptyCall_(contenders.reacts ? emptyCall("org.vantrel.Vantrel", "/org/vantrel/Vantrel")
                                       : command_) {
        environment_["DBUS_SESSION_BUS_ADDRESS"] = bus_.address();
        if (contenders.reacts) {
            program_.emplace(desktop::startVantrel(
                server_, contenders.program.command.front(),
                {.environment = {{"DBUS_SESSION_BUS_ADDRESS", bus_.address()}}}));
        }
        if (!desktop::waitFor([this] { return succeeds(command_) && succeeds(emptyCall_); })) {
            throw std::runtime_error("the program takes no commands");
        }
    }

    Samples command() { return timeOf(command_); }
    Samples emptyCall() { return timeOf(emptyCall_); }

private:
    static Words emptyCall(const std::string& service, const std::string& object) {
        return {"dbus-send",         "--session", "--print-reply",
                "--dest=" + service, object,      "org.freedesktop.DBus.Peer.Ping"};
    }
    bool succeeds(const Words& words) {
        desktop::ChildProcess process({.arguments = words, .environment = environment_});
        return process.wait(std::chrono::seconds(10)) == desktop::ExitStatus{.code = 0};
    }
    Samples timeOf(const Words& words) {
        const auto begin = Clock::now();
        if (!succeeds(words)) {
            throw std::runtime_error("no answer to " + words.front());
        }
        return {Milliseconds(Clock::now() - begin).count()};
    }

    desktop::PrivateServer server_ = desktop::PrivateServer::virtualScreen();
    desktop::PrivateBus bus_{server_.folder() / "runtime" / "bus"};
    desktop::Environment environment_;
    Words command_;
    Words emptyCall_;
    std::optional<desktop::ChildProcess> program_;
};

} // namespace

Report measureCommand(const Contenders& contenders, const Effort& effort) {
    Session session(contenders);
    const Comparison comparison = inTurns(
        effort.commands, [&] { return session.command(); }, [&] { return session.emptyCall(); });
    return {.rows = {summarize("command / empty D-Bus call", "ms", comparison, median, 1.5)}};
}

} // namespace vantrel::bench
