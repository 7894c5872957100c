#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

// What other programs may ask of the running one, and what they are answered.

namespace vantrel {

// The variable with the token by which a compositor lets a window come to the front. The toolkit
// takes it out when it asks for that.
inline constexpr auto activationToken = "XDG_ACTIVATION_TOKEN";

// What came of a command, as the process that was given it tells its caller.
struct CommandAnswer {
    // Each is the exit status of the process.
    enum class Status : std::uint8_t {
        done = 0,
        failed = 1,
        wrongUsage = 2,
        notRunning = 3,
    };

    Status status = Status::done;
    std::string text{}; // for standard output when it was done, an error message otherwise

    bool operator==(const CommandAnswer&) const = default;
};

// How the program stands, as other programs are told.
struct ProgramStatus {
    std::string mode; // off, highlight or laser
    // Who draws them: x11, xwayland, layer-shell, gnome-shell or kwin; absent: nobody.
    std::optional<std::string> marks{};
    std::optional<std::string> marksMissing{}; // why the desktop does not
    // By what the pointer is followed, presses are seen and shortcuts taken; absent: by nothing.
    std::optional<std::string> pointer{};
    std::optional<std::string> presses{};
    std::optional<std::string> shortcuts{};
    bool clickAvailable = true;
    std::optional<std::string> hotkeyError{}; // duplicate or registration
    std::string version{};
    std::string build{};

    bool operator==(const ProgramStatus&) const = default;
};

// What other programs may ask of the running one.
struct RemoteControl {
    // By their names. False, with nothing changed, for what is none, and for "off" to be toggled.
    std::function<bool(const std::string& mode)> setMode;
    std::function<bool(const std::string& mode)> toggle;
    std::function<void()> openSettings;
    std::function<void()> quit;
    std::function<ProgramStatus()> status;
};

} // namespace vantrel
