#include "app/background.h"
#include "app/running_instance.h"
#include "app/start.h"
#include "platform/x11/connection.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include <dlfcn.h>
#include <unistd.h>

namespace vantrel {
namespace {

constexpr auto usage =
    "Usage: vantrel [--settings]\n"
    "       vantrel COMMAND\n"
    "\n"
    "Makes the mouse pointer easy to follow, on every display. Without a command, Vantrel starts;\n"
    "when it runs already on this display, its windows come to the front, or the settings open.\n"
    "\n"
    "  --settings         open the settings window\n"
    "  --help             show this text and exit\n"
    "  --version          show the version and exit\n"
    "\n"
    "Commands to the Vantrel that runs:\n"
    "  off                show nothing\n"
    "  highlight          show the highlight; starts Vantrel if need be, as do those below\n"
    "  laser              show the laser\n"
    "  toggle highlight   show the highlight, or nothing when it was shown\n"
    "  toggle laser       show the laser, or nothing when it was shown\n"
    "  settings           open the settings window\n"
    "  status [--json]    print the mode: off, highlight or laser; or that and more, as JSON\n"
    "  quit               end Vantrel\n"
    "\n"
    "Exit status: 0 done, 1 failed, 2 not understood, 3 Vantrel does not run on this display.\n";

constexpr std::chrono::seconds patienceWithServer(7); // and with the program, whose limit is lower
constexpr std::chrono::seconds patienceWithStart(30);

using Status = CommandAnswer::Status;

CommandAnswer misunderstood(const CommandWords& words) {
    std::string text;
    for (const auto& word : words) {
        text.append(text.empty() ? "" : " ").append(word);
    }
    return {.status = Status::wrongUsage,
            .text = "unknown command \"" + text + "\", see vantrel --help"};
}

// The program itself is a module: a command is answered before its libraries would be loaded.
int runProgram(const Start& start) {
    std::error_code error;
    const auto executable = std::filesystem::read_symlink("/proc/self/exe", error);
    const auto path = executable.parent_path() / VANTREL_PROGRAM_FROM_EXECUTABLE;
    void* program = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
    void* function = program != nullptr ? dlsym(program, runProgramName) : nullptr;
    if (function == nullptr) {
        return report(failure(dlerror()));
    }
    return reinterpret_cast<RunProgram*>(function)(start);
}

// An X server that hangs is waited for at every turn, without an end.
class ServerPatience {
public:
    explicit ServerPatience(std::chrono::seconds limit) {
        std::signal(SIGALRM, [](int) {
            constexpr std::string_view message("vantrel: no answer from the X server\n");
            [[maybe_unused]] const auto written =
                write(STDERR_FILENO, message.data(), message.size());
            _exit(EXIT_FAILURE);
        });
        alarm(static_cast<unsigned>(limit.count()));
    }
    ~ServerPatience() {
        alarm(0);
        std::signal(SIGALRM, SIG_DFL);
    }
    ServerPatience(const ServerPatience&) = delete;
    ServerPatience& operator=(const ServerPatience&) = delete;
};

// Nothing when no instance runs.
std::optional<CommandAnswer> giveCommand(const CommandWords& words, const Command& command) {
    const ServerPatience serverPatience(patienceWithServer);
    std::string error;
    const auto connection = x11::Connection::open({}, error);
    return connection ? askRunningInstance(*connection, words, command) : failure(error);
}

int runCommand(const Start& start) {
    if (const auto answer = giveCommand(start.words, start.command)) {
        return report(*answer);
    }
    if (!start.command.startsProgram()) {
        return report({.status = Status::notRunning, .text = "not running on this display"});
    }
    return runInBackground(patienceWithStart, [&start](std::function<void()> ready) {
        Start again = start;
        again.launched = std::move(ready);
        return runProgram(again);
    });
}

} // namespace
} // namespace vantrel

int main(int argc, char** argv) {
    const vantrel::CommandWords words(argv + std::min(argc, 1), argv + argc);
    if (std::ranges::find(words, "--help") != words.end()) {
        std::fputs(vantrel::usage, stdout);
        return EXIT_SUCCESS;
    }
    if (words == vantrel::CommandWords{"--version"}) {
        std::puts("vantrel " VANTREL_VERSION " (" VANTREL_BUILD ")");
        return EXIT_SUCCESS;
    }
    const auto command = vantrel::parseCommand(words);
    if (!command) {
        return vantrel::report(vantrel::misunderstood(words));
    }
    const vantrel::Start start{argc, argv, words, *command, [] {}};
    return command->isStart() ? vantrel::runProgram(start) : vantrel::runCommand(start);
}
