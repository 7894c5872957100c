#include "app/background.h"
#include "app/running_instance.h"
#include "app/start.h"
#include "platform/freedesktop/installed_bundle.h"
#include "platform/x11/connection.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include <dlfcn.h>
#include <fcntl.h>
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
    "Exit status: 0 done, 1 failed, 2 not understood, 3 Vantrel does not run on this display.";

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

// What is opened later would be taken for one of them where the caller has closed it.
void openStandardDescriptors() {
    int descriptor = 0;
    while (descriptor <= STDERR_FILENO && descriptor >= 0) {
        descriptor = open("/dev/null", O_RDWR);
    }
    close(descriptor);
}

// The program itself is a module: a command is answered before its libraries would be loaded.
int runProgram(const Start& start) {
    const auto executable = runningExecutable();
    if (executable.empty()) {
        return report(failure("it does not find itself in /proc"));
    }
    const auto path = executable.parent_path() / VANTREL_PROGRAM_FROM_EXECUTABLE;
    void* program = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
    void* function = program != nullptr ? dlsym(program, runProgramName) : nullptr;
    if (function == nullptr) {
        return report(failure(dlerror()));
    }
    return reinterpret_cast<RunProgram*>(function)(start);
}

// Nothing when no instance runs.
std::optional<CommandAnswer> giveCommand(const CommandWords& words, const Command& command) {
    const ServerPatience serverPatience;
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
    vantrel::openStandardDescriptors();
    const vantrel::CommandWords words(argv + std::min(argc, 1), argv + argc);
    if (std::ranges::find(words, "--help") != words.end()) {
        return vantrel::report({.text = vantrel::usage});
    }
    if (words == vantrel::CommandWords{"--version"}) {
        return vantrel::report({.text = "vantrel " VANTREL_VERSION " (" VANTREL_BUILD ")"});
    }
    const auto command = vantrel::parseCommand(words);
    if (!command) {
        return vantrel::report(vantrel::misunderstood(words));
    }
    const vantrel::Start start{argc, argv, words, *command, [] {}};
    return command->isStart() ? vantrel::runProgram(start) : vantrel::runCommand(start);
}
