#pragma once

#include "testdesk/temporary_folder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

using desktop::TemporaryFolder;

// A variable of the environment that gets its former value back.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const std::string& value) : name_(name) {
        if (const char* former = std::getenv(name)) {
            former_ = former;
        }
        setenv(name, value.c_str(), 1);
    }
    ~ScopedVariable() { former_ ? setenv(name_, former_->c_str(), 1) : unsetenv(name_); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    const char* name_;
    std::optional<std::string> former_;
};

inline std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator(file), {}};
}

inline void putFile(const std::filesystem::path& path, std::string_view content) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

inline void putProgram(const std::filesystem::path& path, std::string_view script) {
    putFile(path, script);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
}

} // namespace vantrel
