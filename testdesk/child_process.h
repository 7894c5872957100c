#pragma once

#include <chrono>
#include <csignal>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace vantrel::desktop {

using Environment = std::map<std::string, std::string>;

struct Command {
    std::vector<std::string> arguments{}; // the program comes first, searched for in PATH
    Environment environment = {};         // all of it, nothing is inherited
    std::filesystem::path output{};       // receives standard output; empty: discarded
    std::filesystem::path errors{};       // receives standard error; empty: discarded
    std::vector<int> keepOpen{};          // descriptors that the program inherits
    int signalOnParentDeath = SIGKILL;    // sent when the thread that started it ends first
};

// How a program ended: with a status, or by a signal.
struct ExitStatus {
    std::optional<int> code{};
    std::optional<int> signal{};

    bool operator==(const ExitStatus&) const = default;
};

// A running program. It is ended when this is destroyed.
class ChildProcess {
public:
    explicit ChildProcess(const Command& command); // throws when it cannot be started
    ~ChildProcess();
    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&& other) noexcept;

    [[nodiscard]] pid_t pid() const { return pid_; }
    [[nodiscard]] bool running();
    // Nothing while it still runs after that time.
    std::optional<ExitStatus> wait(std::chrono::milliseconds limit);
    void signal(int number) const;
    // Asks it to end, and kills it when it has not done so in time.
    ExitStatus terminate(std::chrono::milliseconds timeout = std::chrono::seconds(3));

private:
    pid_t pid_ = -1;
    int pidDescriptor_ = -1;
    std::optional<ExitStatus> status_;
};

// What a program needs to find its way: PATH, a UTF-8 locale, and the options of the sanitizers.
[[nodiscard]] Environment minimalEnvironment();

// The same with a home below that folder, and away from all buses.
[[nodiscard]] Environment environmentIn(const std::filesystem::path& folder);
// What must be there of such a home: the folder for sockets.
void makeRuntimeFolder(const std::filesystem::path& folder);

// The first number with points, such as "1.12", that the program tells with --version; empty where
// there is none.
[[nodiscard]] std::string versionToldBy(const std::string& program);

[[nodiscard]] std::string readFile(const std::filesystem::path& path);

} // namespace vantrel::desktop
