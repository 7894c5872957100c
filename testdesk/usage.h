#pragma once

#include "testdesk/x_connection.h"

#include <chrono>
#include <cstdint>

#include <sys/types.h>

namespace vantrel::desktop {

// What a process has cost. Each throws when it is gone.

[[nodiscard]] std::chrono::nanoseconds cpuTime(pid_t process);
// Proportional set size: what it shares is divided by those who share it.
[[nodiscard]] std::uint64_t proportionalBytes(pid_t process);
// That without what is mapped from files, which depends on who else maps them.
[[nodiscard]] std::uint64_t ownBytes(pid_t process);

// What the server holds for a client that is connected directly.
struct ServerResources {
    std::uint64_t pixmapBytes = 0;
    std::uint64_t windows = 0;
    std::uint64_t pixmaps = 0;

    bool operator==(const ServerResources&) const = default;
};

// Of all connections of the process together.
[[nodiscard]] ServerResources serverResources(const XConnection& connection, pid_t process);

} // namespace vantrel::desktop
