#include "testdesk/temporary_folder.h"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>
#include <utility>

namespace vantrel::desktop {

TemporaryFolder::TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "vantrel-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "cannot make " + name);
    }
    path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
    if (!path_.empty()) {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
}

TemporaryFolder::TemporaryFolder(TemporaryFolder&& other) noexcept
    : path_(std::exchange(other.path_, {})) {}

TemporaryFolder& TemporaryFolder::operator=(TemporaryFolder&& other) noexcept {
    std::swap(path_, other.path_);
    return *this;
}

} // namespace vantrel::desktop
