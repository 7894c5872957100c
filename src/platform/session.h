#pragma once

#include "platform/subscription.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The user's session: language, files, login, sleep.

namespace vantrel {

class Locale {
public:
    virtual ~Locale() = default;

    // Language tags such as en-US or zh_CN, the preferred one first; may be empty.
    [[nodiscard]] virtual std::vector<std::string> preferredLanguages() const = 0;
};

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

enum class LoginItemStatus : std::uint8_t {
    notRegistered = 0,
    enabled = 1,
    requiresApproval = 2, // registered, and switched off in a way that only the user may undo
    notFound = 3,
};

// Whether the session starts this application at login.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    [[nodiscard]] virtual LoginItemStatus status() const = 0;
    // False when the change was refused.
    virtual bool register_() = 0;
    virtual bool unregister() = 0;
};

// The user's session around the application.
class Workspace {
public:
    virtual ~Workspace() = default;

    // False when the desktop has nothing that opens it.
    virtual bool openUrl(const std::string& url) = 0;
    // The machine sleeps only after every callback returned, as far as it can be held.
    [[nodiscard]] virtual Subscription onWillSleep(std::function<void()> callback) = 0;
    [[nodiscard]] virtual Subscription onDidWake(std::function<void()> callback) = 0;
};

} // namespace vantrel
