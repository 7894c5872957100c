#pragma once

#include "platform/session.h"

#include <filesystem>
#include <optional>
#include <string>

namespace vantrel {

class DesktopEntry;

// The login item as the desktop entry "autostart/vantrel.desktop" of the user's configuration, or,
// where the user has none, of the system's. The file is the truth and may be someone else's: it is
// read as a desktop reads it, and what is not this program's own is never changed.
//
// Registering needs an installed program: a desktop entry "vantrel.desktop" among the applications
// that starts the executable. An entry that is switched off (hidden, or disabled by the flag of the
// desktop that runs, or not for this desktop) is left so; the user alone may switch it on again.
//
// Unregistering removes the entry that registering wrote. One that the user has edited, or that
// stands in front of the system's, is hidden instead, with a mark by which registering knows that
// it may come back. One that was switched off before gets the mark alone.
class AutostartLoginItem final : public LoginItem {
public:
    explicit AutostartLoginItem(std::filesystem::path executable);

    [[nodiscard]] LoginItemStatus status() const override;
    bool register_() override;
    bool unregister() override;

private:
    [[nodiscard]] std::optional<std::string> installedProgram() const;
    [[nodiscard]] std::optional<std::string> programStartedBy(const DesktopEntry& entry) const;
    [[nodiscard]] LoginItemStatus statusOf(const DesktopEntry& entry) const;
    [[nodiscard]] bool mayTakeOver(const DesktopEntry& entry) const;
    [[nodiscard]] bool isRegistered() const;

    std::filesystem::path executable_;
};

} // namespace vantrel
