#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

// What is installed with the program.
class Bundle {
public:
    virtual ~Bundle() = default;

    // The file "name.extension" of the resources, when it exists.
    [[nodiscard]] virtual std::optional<std::filesystem::path>
    resource(std::string_view name, std::string_view extension) const = 0;
    [[nodiscard]] virtual std::optional<std::string> shortVersion() const = 0;
    [[nodiscard]] virtual std::optional<std::string> buildNumber() const = 0;
};

} // namespace vantrel
