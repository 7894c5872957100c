#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

// What the program keeps for its user between runs: bytes and booleans by key. Failures are silent:
// a value that cannot be read is absent, one that cannot be written leaves the former in place.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    [[nodiscard]] virtual std::optional<std::string> data(std::string_view key) const = 0;
    virtual void setData(std::string_view key, std::string_view bytes) = 0;
    // False when the key is absent or holds something else.
    [[nodiscard]] virtual bool boolean(std::string_view key) const = 0;
    virtual void setBoolean(std::string_view key, bool value) = 0;
};

} // namespace vantrel
