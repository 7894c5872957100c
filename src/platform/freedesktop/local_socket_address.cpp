#include "platform/freedesktop/local_socket_address.h"

#include <cstddef>
#include <cstring>

namespace vantrel {

namespace {

constexpr auto nameOffset = offsetof(sockaddr_un, sun_path) + 1; // after the zero of no path

// The byte that a path needs after it, a name needs before it.
bool fits(std::string_view place) {
    return place.size() + 1 <= sizeof sockaddr_un::sun_path;
}

} // namespace

std::optional<LocalSocketAddress> LocalSocketAddress::ofPath(std::string_view path) {
    LocalSocketAddress socket;
    if (!fits(path)) {
        return std::nullopt;
    }
    std::memcpy(socket.address.sun_path, path.data(), path.size());
    return socket;
}

std::optional<LocalSocketAddress> LocalSocketAddress::ofName(std::string_view name) {
    LocalSocketAddress socket;
    if (!fits(name)) {
        return std::nullopt;
    }
    std::memcpy(socket.address.sun_path + 1, name.data(), name.size());
    socket.size = static_cast<socklen_t>(nameOffset + name.size());
    return socket;
}

std::string_view LocalSocketAddress::name() const {
    return {address.sun_path + 1, size - nameOffset};
}

} // namespace vantrel
