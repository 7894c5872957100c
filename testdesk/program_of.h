#pragma once

#include "support/under_test.h"
#include "testdesk/child_process.h"
#include "testdesk/wait.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace vantrel::desktop {

// The program under test as it is called in a session, which must outlive this.
template <typename Session>
class ProgramOf {
public:
    explicit ProgramOf(const Session& session) : session_(session) {}

    [[nodiscard]] ChildProcess start(std::vector<std::string> words = {}) const {
        words.insert(words.begin(), programUnderTest());
        const auto log = logOf(words.back());
        return ChildProcess({.arguments = words,
                             .environment = session_.environment(),
                             .output = log + ".out",
                             .errors = log + ".err"});
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
    [[nodiscard]] std::string errors() const {
        return readFile(logOf(programUnderTest()) + ".err");
    }

private:
    [[nodiscard]] std::string logOf(const std::filesystem::path& lastWord) const {
        return session_.folder() / lastWord.filename();
    }

    const Session& session_;
};

} // namespace vantrel::desktop
