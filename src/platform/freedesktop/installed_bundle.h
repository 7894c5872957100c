#pragma once

#include "platform/session.h"

namespace vantrel {

// The file that this process runs.
std::filesystem::path runningExecutable();
// Where a module of the program is, from the folder of its executable on.
std::filesystem::path moduleFile(std::string_view name);

// The resources that lie beside the executable, where installing puts them and where the build lays
// them out in the same shape; no path is fixed when the program is built.
class InstalledBundle final : public Bundle {
public:
    explicit InstalledBundle(const std::filesystem::path& executable = runningExecutable());

    // Of all that is installed with the program for others, such as share.
    [[nodiscard]] std::filesystem::path dataFolder() const { return folder_.parent_path(); }
    [[nodiscard]] std::optional<std::filesystem::path>
    resource(std::string_view name, std::string_view extension) const override;
    [[nodiscard]] std::optional<std::string> shortVersion() const override;
    [[nodiscard]] std::optional<std::string> buildNumber() const override;

private:
    std::filesystem::path folder_;
};

} // namespace vantrel
