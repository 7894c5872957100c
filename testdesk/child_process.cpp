#include "testdesk/child_process.h"

#include "testdesk/temporary_folder.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

[[noreturn]] void fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

std::vector<char*> pointersTo(std::vector<std::string>& strings) {
    std::vector<char*> pointers;
    pointers.reserve(strings.size() + 1);
    for (std::string& string : strings) {
        pointers.push_back(string.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

int openForWriting(const std::filesystem::path& path) {
    const char* name = path.empty() ? "/dev/null" : path.c_str();
    const int descriptor = open(name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        fail(std::string("cannot write ") + name);
    }
    return descriptor;
}

// Runs between fork and exec, so only what is safe in a process with other threads.
[[noreturn]] void becomeProgram(const Command& command, char** arguments, char** environment,
                                int output, int errors, pid_t parent) {
    prctl(PR_SET_PDEATHSIG, command.signalOnParentDeath);
    // Whoever started the tests, in the background for instance, may ignore some of them.
    for (const int number : {SIGHUP, SIGINT, SIGTERM, SIGPIPE, SIGCHLD}) {
        std::signal(number, SIG_DFL);
    }
    if (getppid() != parent) {
        _exit(127);
    }
    const int input = open("/dev/null", O_RDONLY);
    dup2(input, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    for (const int descriptor : command.keepOpen) {
        fcntl(descriptor, F_SETFD, 0);
    }
    execvpe(arguments[0], arguments, environment);
    _exit(127);
}

ExitStatus statusFrom(int status) {
    if (WIFSIGNALED(status)) {
        return {.code = {}, .signal = WTERMSIG(status)};
    }
    return {.code = WEXITSTATUS(status), .signal = {}};
}

} // namespace

ChildProcess::ChildProcess(const Command& command) {
    std::vector<std::string> arguments = command.arguments;
    std::vector<std::string> variables;
    for (const auto& [name, value] : command.environment) {
        variables.emplace_back(name).append("=").append(value);
    }
    const std::vector<char*> argumentPointers = pointersTo(arguments);
    const std::vector<char*> variablePointers = pointersTo(variables);
    const int output = openForWriting(command.output);
    const int errors = openForWriting(command.errors);
    const pid_t parent = getpid();

    pid_ = fork();
    if (pid_ == 0) {
        becomeProgram(command, const_cast<char**>(argumentPointers.data()),
                      const_cast<char**>(variablePointers.data()), output, errors, parent);
    }
    close(output);
    close(errors);
    if (pid_ < 0) {
        fail("cannot start " + arguments.front());
    }
    // The C library's own declaration cannot be called from C++ in glibc 2.36.
    pidDescriptor_ = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
}

ChildProcess::~ChildProcess() {
    if (pid_ > 0) {
        terminate();
        close(pidDescriptor_);
    }
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : pid_(std::exchange(other.pid_, -1)),
      pidDescriptor_(std::exchange(other.pidDescriptor_, -1)),
      status_(other.status_) {}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
    std::swap(pid_, other.pid_);
    std::swap(pidDescriptor_, other.pidDescriptor_);
    std::swap(status_, other.status_);
    return *this;
}

bool ChildProcess::running() {
    return !wait(0ms);
}

std::optional<ExitStatus> ChildProcess::wait(std::chrono::milliseconds limit) {
    if (status_) {
        return status_;
    }
    pollfd ended{.fd = pidDescriptor_, .events = POLLIN, .revents = 0};
    if (poll(&ended, 1, static_cast<int>(limit.count())) <= 0) {
        return {};
    }
    int status = 0;
    if (waitpid(pid_, &status, 0) == pid_) {
        status_ = statusFrom(status);
    }
    return status_;
}

void ChildProcess::signal(int number) const {
    if (!status_) {
        kill(pid_, number);
    }
}

ExitStatus ChildProcess::terminate(std::chrono::milliseconds timeout) {
    signal(SIGTERM);
    if (const auto status = wait(timeout)) {
        return *status;
    }
    signal(SIGKILL);
    return wait(10s).value_or(ExitStatus{});
}

Environment minimalEnvironment() {
    Environment environment{{"LANG", "C.UTF-8"}, {"PATH", "/usr/bin:/bin"}};
    for (const char* name : {"PATH", "ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"}) {
        if (const char* value = std::getenv(name)) {
            environment[name] = value;
        }
    }
    return environment;
}

Environment environmentIn(const std::filesystem::path& folder) {
    auto environment = minimalEnvironment();
    environment["HOME"] = folder;
    environment["XDG_CACHE_HOME"] = folder / "cache";
    environment["XDG_CONFIG_HOME"] = folder / "config";
    environment["XDG_DATA_HOME"] = folder / "data";
    environment["XDG_STATE_HOME"] = folder / "state";
    environment["XDG_RUNTIME_DIR"] = folder / "runtime";
    environment["DBUS_SESSION_BUS_ADDRESS"] = "disabled:";
    environment["DBUS_SYSTEM_BUS_ADDRESS"] = "disabled:";
    environment["NO_AT_BRIDGE"] = "1";
    return environment;
}

void makeRuntimeFolder(const std::filesystem::path& folder) {
    std::filesystem::create_directory(folder / "runtime");
    std::filesystem::permissions(folder / "runtime", std::filesystem::perms::owner_all);
}

std::string versionToldBy(const std::string& program) {
    const TemporaryFolder folder;
    // By a shell, which does not mind when there is no such program.
    ChildProcess({.arguments = {"sh", "-c", "'" + program + "' --version"},
                  .environment = minimalEnvironment(),
                  .output = folder / "version"})
        .wait(10s);
    const auto text = readFile(folder / "version");
    const auto start = text.find_first_of("0123456789");
    return start == std::string::npos
               ? ""
               : text.substr(start, text.find_first_not_of("0123456789.", start) - start);
}

std::string readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace vantrel::desktop
