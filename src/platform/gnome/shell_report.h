#pragma once

#include "platform/marks.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace vantrel {

// The version of the extension that this program was made with.
inline constexpr std::uint32_t extensionVersion = 2;

// What the shell calls the state of an extension.
enum class ExtensionState : std::uint8_t {
    enabled = 1,
    disabled = 2,
    error = 3,
    outOfDate = 4,
    downloading = 5,
    initialized = 6,
};

// What is known of the shell.
struct ShellReport {
    bool hasShell = false;
    std::optional<std::uint32_t> version{};    // that the extension has told
    bool servesOther = false;                  // it has refused this program for another
    bool hasFailed = false;                    // it does not do what it is told
    std::optional<ExtensionState> extension{}; // none of which the shell knows nothing
    bool isAwaited = false;                    // the user wants it, and the shell will find it

    bool operator==(const ShellReport&) const = default;
};

[[nodiscard]] MarksState stateOf(const ShellReport& report);
// Which extension is for a shell of that version, such as "43.9".
[[nodiscard]] QString extensionFor(const QString& shellVersion);

} // namespace vantrel
