#pragma once

#include "testdesk/child_process.h"
#include "testdesk/wait.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace vantrel::desktop {

// A build of Vantrel as it is called in a session, which must outlive this.
template <typename Session>
class ProgramOf {
public:
    // With variables on top of the session's.
    ProgramOf(const Session& session, std::filesystem::path program, Environment more = {})
        : session_(session), program_(std::move(program)), environment_(std::move(more)) {
        environment_.merge(session.environment());
    }

    [[nodiscard]] ChildProcess start(std::vector<std::string> words = {}) const {
        words.insert(words.begin(), program_);
        const auto log = logOf(words.back());
        return ChildProcess({.arguments = words,
                             .environment = environment_,
                             .output = log + ".out",
                             .errors = log + ".err"});
    }
    // Whether the program that runs has carried out a command.
    [[nodiscard]] bool takes(const std::string& command) const {
        return start({command}).wait(std::chrono::seconds(10)) == ExitStatus{.code = 0};
    }
    // Waits for that. Until then, a command that shows something would become the program itself.
    [[nodiscard]] bool takesCommands() const {
        return waitFor([this] { return takes("status"); }, std::chrono::seconds(20));
    }
    // What it tells other programs; no object while it does not run.
    [[nodiscard]] nlohmann::json status() const {
        start({"status", "--json"}).wait(std::chrono::seconds(10));
        return nlohmann::json::parse(readFile(logOf("--json") + ".out"), nullptr, false);
    }
    // Waits until that is so.
    [[nodiscard]] bool tells(const char* key, const nlohmann::json& value) const {
        return waitFor([&] {
            const auto all = status();
            return all.is_object() && all.at(key) == value;
        });
    }
    // Of the one that was started without words.
    [[nodiscard]] std::string errors() const { return readFile(logOf(program_) + ".err"); }

private:
    [[nodiscard]] std::string logOf(const std::filesystem::path& lastWord) const {
        return session_.folder() / lastWord.filename();
    }

    const Session& session_;
    std::filesystem::path program_;
    Environment environment_;
};

} // namespace vantrel::desktop
