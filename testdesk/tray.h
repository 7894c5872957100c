#pragma once

#include "testdesk/private_server.h"
#include "testdesk/program_windows.h"

#include <optional>
#include <string>

namespace vantrel::desktop {

// trayer in the bottom-right corner, for icons of the system tray protocol of X. It ends with this.
class Tray {
public:
    enum class Edge { bottom, top };

    // Returns once it takes icons; throws when it does not in time.
    explicit Tray(const PrivateServer& server, Edge edge = Edge::bottom);

    // The icon of a program: absent while none is shown.
    [[nodiscard]] std::optional<WindowState> icon(const std::string& program) const;
    [[nodiscard]] std::optional<PixelRect> iconArea(const std::string& program) const;
    // Absent when it did not appear in time.
    [[nodiscard]] std::optional<PixelRect> waitForIcon(const std::string& program) const;

    // As a crash would. Its windows are gone afterwards.
    void kill();

private:
    XConnection connection_;
    ChildProcess process_;
};

} // namespace vantrel::desktop
