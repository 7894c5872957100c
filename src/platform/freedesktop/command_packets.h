#pragma once

#include "platform/control.h"
#include "platform/freedesktop/command_call.h"

#include <optional>
#include <string>
#include <string_view>

#include <sys/socket.h>

namespace vantrel {

// What both ends of a command's socket must agree about.

inline constexpr int commandSocketKind = SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK;

// Whether the process at the other end is of the same user as this one.
[[nodiscard]] bool isOfSameUser(int socket);

// Nothing when there is no packet nor will be, or when it is larger than any of ours.
[[nodiscard]] std::optional<std::string> receivePacket(int socket);
// Whether there is still somebody.
bool sendPacket(int socket, std::string_view packet);

[[nodiscard]] std::string encoded(const CommandRequest& request);
[[nodiscard]] std::string encoded(const CommandAnswer& answer);
[[nodiscard]] CommandRequest decodedRequest(std::string_view packet);
[[nodiscard]] CommandAnswer decodedAnswer(const std::string& packet);

} // namespace vantrel
