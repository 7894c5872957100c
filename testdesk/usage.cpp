#include "testdesk/usage.h"

#include "testdesk/child_process.h"

#include <ctime>
#include <stdexcept>
#include <string>

#include <xcb/res.h>

namespace vantrel::desktop {
namespace {

std::vector<std::uint32_t> clientsOf(const XConnection& connection, pid_t process) {
    const xcb_res_client_id_spec_t everyone{.client = 0,
                                            .mask = XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const auto cookie = xcb_res_query_client_ids(connection.get(), 1, &everyone);
    const auto reply = ownReply(xcb_res_query_client_ids_reply(connection.get(), cookie, nullptr));
    if (!reply) {
        throw std::runtime_error("the server does not tell its clients");
    }
    std::vector<std::uint32_t> clients;
    for (auto id = xcb_res_query_client_ids_ids_iterator(reply.get()); id.rem > 0;
         xcb_res_client_id_value_next(&id)) {
        if (id.data->length >= 4 &&
            xcb_res_client_id_value_value(id.data)[0] == static_cast<std::uint32_t>(process)) {
            clients.push_back(id.data->spec.client);
        }
    }
    return clients;
}

std::uint64_t pixmapBytes(const XConnection& connection, std::uint32_t client) {
    const auto cookie = xcb_res_query_client_pixmap_bytes(connection.get(), client);
    const auto reply =
        ownReply(xcb_res_query_client_pixmap_bytes_reply(connection.get(), cookie, nullptr));
    return reply ? std::uint64_t{reply->bytes_overflow} << 32 | reply->bytes : 0;
}

void addCounts(const XConnection& connection, std::uint32_t client, ServerResources& sum) {
    const xcb_atom_t windowType = connection.atom("WINDOW");
    const xcb_atom_t pixmapType = connection.atom("PIXMAP");
    const auto cookie = xcb_res_query_client_resources(connection.get(), client);
    const auto reply =
        ownReply(xcb_res_query_client_resources_reply(connection.get(), cookie, nullptr));
    if (!reply) {
        return;
    }
    for (auto type = xcb_res_query_client_resources_types_iterator(reply.get()); type.rem > 0;
         xcb_res_type_next(&type)) {
        sum.windows += type.data->resource_type == windowType ? type.data->count : 0;
        sum.pixmaps += type.data->resource_type == pixmapType ? type.data->count : 0;
    }
}

std::uint64_t bytesOf(pid_t process, const std::string& what) {
    const std::string text = readFile("/proc/" + std::to_string(process) + "/smaps_rollup");
    const std::size_t line = text.find(what);
    if (line == std::string::npos) {
        throw std::runtime_error("no such process: " + std::to_string(process));
    }
    return std::stoull(text.substr(line + what.size())) * 1024;
}

} // namespace

std::chrono::nanoseconds cpuTime(pid_t process) {
    clockid_t clock = 0;
    timespec time{};
    if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &time) != 0) {
        throw std::runtime_error("no such process: " + std::to_string(process));
    }
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

std::uint64_t proportionalBytes(pid_t process) {
    return bytesOf(process, "\nPss:");
}

std::uint64_t ownBytes(pid_t process) {
    return bytesOf(process, "\nPss_Anon:") + bytesOf(process, "\nPss_Shmem:");
}

ServerResources serverResources(const XConnection& connection, pid_t process) {
    ServerResources sum;
    for (const std::uint32_t client : clientsOf(connection, process)) {
        sum.pixmapBytes += pixmapBytes(connection, client);
        addCounts(connection, client, sum);
    }
    return sum;
}

} // namespace vantrel::desktop
