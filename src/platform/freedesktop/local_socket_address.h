#pragma once

#include <optional>
#include <string_view>

#include <sys/socket.h>
#include <sys/un.h>

namespace vantrel {

// Where a local socket is: at a path, or at a name that is in no folder.
struct LocalSocketAddress {
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    socklen_t size = sizeof(sockaddr_un);

    // Nothing when it is too long to be one.
    [[nodiscard]] static std::optional<LocalSocketAddress> ofPath(std::string_view path);
    [[nodiscard]] static std::optional<LocalSocketAddress> ofName(std::string_view name);

    // Of an address that has one.
    [[nodiscard]] std::string_view name() const;

    [[nodiscard]] const sockaddr* data() const {
        return reinterpret_cast<const sockaddr*>(&address);
    }
    [[nodiscard]] sockaddr* data() { return reinterpret_cast<sockaddr*>(&address); }
};

} // namespace vantrel
