#include "platform/freedesktop/xdg_directories.h"

#include "platform/environment.h"

#include <algorithm>
#include <pwd.h>
#include <sstream>
#include <string>
#include <system_error>
#include <unistd.h>

namespace vantrel {
namespace {

using std::filesystem::path;

std::string variable(const char* name, const char* otherwise = "") {
    const auto value = environment(name);
    return value.empty() ? otherwise : value;
}

path home() {
    path named = variable("HOME");
    if (named.is_absolute()) {
        return named;
    }
    const passwd* user = getpwuid(geteuid());
    return user != nullptr ? user->pw_dir : "/";
}

std::vector<path> directories(const path& user, const path& usual, const std::string& system) {
    std::vector<path> found{user.is_absolute() ? user : home() / usual};
    std::istringstream list(system);
    for (std::string directory; std::getline(list, directory, ':');) {
        if (path(directory).is_absolute()) {
            found.emplace_back(directory);
        }
    }
    return found;
}

} // namespace

std::vector<path> configDirectories() {
    return directories(variable("XDG_CONFIG_HOME"), ".config",
                       variable("XDG_CONFIG_DIRS", "/etc/xdg"));
}

std::vector<path> dataDirectories() {
    return directories(variable("XDG_DATA_HOME"), ".local/share",
                       variable("XDG_DATA_DIRS", "/usr/local/share:/usr/share"));
}

bool offerToSession(const path& dataFolder, const path& place) {
    std::error_code error;
    const auto source = dataFolder / place;
    const auto folders = dataDirectories();
    const auto found = std::ranges::find_if(folders, [&](const path& folder) {
        return std::filesystem::exists(folder / place, error);
    });
    if (found != folders.end() && std::filesystem::equivalent(*found / place, source, error)) {
        return true;
    }
    // A link is somebody's own arrangement.
    const auto copy = folders.front() / place;
    if (std::filesystem::is_symlink(copy, error)) {
        return false;
    }
    std::filesystem::create_directories(copy.parent_path(), error);
    using enum std::filesystem::copy_options;
    std::filesystem::copy(source, copy, recursive | overwrite_existing, error);
    return !error;
}

} // namespace vantrel
