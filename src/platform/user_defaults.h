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

    // What is stored under the key, or that nothing is, means these bytes to the program: setting
    // them is no change, and does not undo one that another program has made since.
    virtual void countAs(std::string_view key, std::string_view bytes) {
        static_cast<void>(key);
        static_cast<void>(bytes);
    }
    // What is stored under the key is of no use to the program. It is put aside, not lost, when it
    // is replaced.
    virtual void keepUnusable(std::string_view key) { static_cast<void>(key); }
};

} // namespace vantrel
