#pragma once

#include <functional>
#include <optional>
#include <string>

namespace vantrel {

// How the program stands, as other programs are told.
struct ProgramStatus {
    std::string mode; // off, highlight or laser
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
