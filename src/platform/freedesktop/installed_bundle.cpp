#include "platform/freedesktop/installed_bundle.h"

namespace vantrel {

std::filesystem::path moduleFile(std::string_view name) {
    return runningExecutable().parent_path() / VANTREL_MODULES_FROM_EXECUTABLE / name;
}

std::filesystem::path runningExecutable() {
    std::error_code error;
    auto path = std::filesystem::read_symlink("/proc/self/exe", error).native();
    // So it ends once an update has put another file in its place.
    constexpr std::string_view replaced = " (deleted)";
    if (path.ends_with(replaced) && !std::filesystem::exists(path, error)) {
        path.resize(path.size() - replaced.size());
    }
    return path;
}

InstalledBundle::InstalledBundle(const std::filesystem::path& executable)
    : folder_((executable.parent_path() / VANTREL_RESOURCES_FROM_EXECUTABLE).lexically_normal()) {}

std::optional<std::filesystem::path> InstalledBundle::resource(std::string_view name,
                                                               std::string_view extension) const {
    const auto path = folder_ / (std::string(name) + "." + std::string(extension));
    std::error_code missing;
    return std::filesystem::is_regular_file(path, missing) ? std::optional(path) : std::nullopt;
}

std::optional<std::string> InstalledBundle::shortVersion() const {
    return VANTREL_VERSION;
}

std::optional<std::string> InstalledBundle::buildNumber() const {
    return VANTREL_BUILD_NUMBER;
}

} // namespace vantrel
