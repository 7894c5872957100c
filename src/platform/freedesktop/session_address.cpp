#include "platform/freedesktop/session_address.h"

#include "platform/freedesktop/command_packets.h"
#include "platform/freedesktop/local_socket_address.h"
#include "platform/freedesktop/unique_descriptor.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

namespace vantrel {

namespace {

std::filesystem::path compositorPath() {
    const char* name = std::getenv("WAYLAND_DISPLAY");
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    if (name == nullptr || *name == '\0' || folder == nullptr || *folder == '\0') {
        return {};
    }
    return std::filesystem::path(folder) / name; // which is the name where that begins at the root
}

// Also where others wait there already.
bool takesConnections(const std::string& path) {
    const UniqueDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const auto place = LocalSocketAddress::ofPath(path);
    return socket && place &&
           (connect(socket.get(), place->data(), place->size) == 0 || errno == EAGAIN);
}

} // namespace

std::optional<std::string> sessionAddress() {
    const auto path = compositorPath();
    struct stat compositor {};
    if (path.empty() || !takesConnections(path) || stat(path.c_str(), &compositor) != 0) {
        return std::nullopt;
    }
    // A path may be written in many ways.
    return "vantrel-" + std::to_string(geteuid()) + "-" + std::to_string(compositor.st_dev) + "-" +
           std::to_string(compositor.st_ino);
}

bool isTaken(const std::string& address) {
    const UniqueDescriptor socket(::socket(AF_UNIX, commandSocketKind, 0));
    const auto name = LocalSocketAddress::ofName(address);
    return socket && name && bind(socket.get(), name->data(), name->size) != 0;
}

} // namespace vantrel
