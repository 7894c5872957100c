#include "testdesk/displays.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <string>

#include <sys/uio.h>
#include <xcb/randr.h>
#include <xcb/xcbext.h>

namespace vantrel::desktop {
namespace {

std::int16_t narrow16(int value) {
    return static_cast<std::int16_t>(value);
}

std::uint16_t unsigned16(int value) {
    return static_cast<std::uint16_t>(value);
}

// At 96 pixels to an inch.
std::uint32_t millimeters(int pixels) {
    return static_cast<std::uint32_t>(pixels * 254 / 960);
}

void require(const XConnection& connection, xcb_void_cookie_t cookie, const char* what) {
    const auto error = ownReply(xcb_request_check(connection.get(), cookie));
    if (error) {
        throw std::runtime_error(std::string(what) + " failed with the error code " +
                                 std::to_string(error->error_code));
    }
}

void deleteMonitors(const XConnection& connection) {
    const auto monitors = ownReply(xcb_randr_get_monitors_reply(
        connection.get(), xcb_randr_get_monitors(connection.get(), connection.root(), 0), nullptr));
    for (auto monitor = xcb_randr_get_monitors_monitors_iterator(monitors.get()); monitor.rem > 0;
         xcb_randr_monitor_info_next(&monitor)) {
        if (monitor.data->automatic == 0) {
            xcb_randr_delete_monitor(connection.get(), connection.root(), monitor.data->name);
        }
    }
}

struct SetMonitorRequest {
    xcb_randr_set_monitor_request_t header{};
    xcb_randr_monitor_info_t monitor{};
    xcb_randr_output_t output = XCB_NONE;
};
static_assert(sizeof(SetMonitorRequest) == 36);

// xcb_randr_set_monitor() of libxcb 1.15 sends a part of the request that it never set.
xcb_void_cookie_t send(const XConnection& connection, SetMonitorRequest& request) {
    const xcb_protocol_request_t description{
        .count = 2, .ext = &xcb_randr_id, .opcode = XCB_RANDR_SET_MONITOR, .isvoid = 1};
    // The two parts before the first one belong to the library.
    std::array<iovec, 4> parts{};
    parts[2] = {.iov_base = &request,
                .iov_len = sizeof(request) - (request.monitor.nOutput == 0 ? 4 : 0)};
    return {xcb_send_request(connection.get(), XCB_REQUEST_CHECKED, &parts[2], &description)};
}

void setMonitor(const XConnection& connection, const PixelRect& area, std::size_t index,
                xcb_randr_output_t output) {
    SetMonitorRequest request;
    request.header.window = connection.root();
    request.monitor = {
        .name = connection.atom("VIRTUAL" + std::to_string(index)),
        .primary = index == 0,
        .automatic = 0,
        .nOutput = unsigned16(output == XCB_NONE ? 0 : 1),
        .x = narrow16(area.x),
        .y = narrow16(area.y),
        .width = unsigned16(area.width),
        .height = unsigned16(area.height),
        .width_in_millimeters = millimeters(area.width),
        .height_in_millimeters = millimeters(area.height),
    };
    request.output = output;
    require(connection, send(connection, request), "making a monitor");
}

struct Resources {
    xcb_timestamp_t timestamp = 0;
    std::vector<xcb_randr_crtc_t> crtcs;
    std::vector<xcb_randr_output_t> outputs;
};

Resources resourcesOf(const XConnection& connection) {
    const auto reply = ownReply(xcb_randr_get_screen_resources_current_reply(
        connection.get(),
        xcb_randr_get_screen_resources_current(connection.get(), connection.root()), nullptr));
    if (!reply) {
        throw std::runtime_error("the server has no outputs");
    }
    const auto* crtcs = xcb_randr_get_screen_resources_current_crtcs(reply.get());
    const auto* outputs = xcb_randr_get_screen_resources_current_outputs(reply.get());
    return {.timestamp = reply->config_timestamp,
            .crtcs = {crtcs, crtcs + reply->num_crtcs},
            .outputs = {outputs, outputs + reply->num_outputs}};
}

// The same name for the same timing, so that a mode is made once.
std::string modeName(const Output& output) {
    return std::to_string(output.size.width) + "x" + std::to_string(output.size.height) + "@" +
           std::to_string(std::lround(output.rate * 1000));
}

xcb_randr_mode_t existingMode(const XConnection& connection, const std::string& name) {
    const auto reply = ownReply(xcb_randr_get_screen_resources_current_reply(
        connection.get(),
        xcb_randr_get_screen_resources_current(connection.get(), connection.root()), nullptr));
    const auto* text =
        reinterpret_cast<const char*>(xcb_randr_get_screen_resources_current_names(reply.get()));
    const auto* mode = xcb_randr_get_screen_resources_current_modes(reply.get());
    for (int i = 0; i < xcb_randr_get_screen_resources_current_modes_length(reply.get()); ++i) {
        if (std::string(text, mode[i].name_len) == name) {
            return mode[i].id;
        }
        text += mode[i].name_len;
    }
    return XCB_NONE;
}

xcb_randr_mode_t makeMode(const XConnection& connection, const Output& output) {
    const std::string name = modeName(output);
    if (const xcb_randr_mode_t mode = existingMode(connection, name)) {
        return mode;
    }
    const int blankWidth = 280;
    const int blankHeight = 45;
    xcb_randr_mode_info_t mode{};
    mode.width = unsigned16(output.size.width);
    mode.height = unsigned16(output.size.height);
    mode.hsync_start = unsigned16(output.size.width + 88);
    mode.hsync_end = unsigned16(output.size.width + 132);
    mode.htotal = unsigned16(output.size.width + blankWidth);
    mode.vsync_start = unsigned16(output.size.height + 4);
    mode.vsync_end = unsigned16(output.size.height + 9);
    mode.vtotal = unsigned16(output.size.height + blankHeight);
    mode.dot_clock =
        static_cast<std::uint32_t>(std::lround(output.rate * mode.htotal * mode.vtotal));
    mode.name_len = unsigned16(static_cast<int>(name.size()));
    const auto cookie =
        xcb_randr_create_mode(connection.get(), connection.root(), mode,
                              static_cast<std::uint32_t>(name.size()), name.c_str());
    const auto reply = ownReply(xcb_randr_create_mode_reply(connection.get(), cookie, nullptr));
    if (!reply) {
        throw std::runtime_error("the server refuses the mode " + name);
    }
    return reply->mode;
}

void setCrtc(const XConnection& connection, xcb_randr_crtc_t crtc, PixelPoint position,
             xcb_randr_mode_t mode, std::vector<xcb_randr_output_t> outputs) {
    const auto cookie = xcb_randr_set_crtc_config(
        connection.get(), crtc, XCB_CURRENT_TIME, resourcesOf(connection).timestamp,
        narrow16(position.x), narrow16(position.y), mode, XCB_RANDR_ROTATION_ROTATE_0,
        static_cast<std::uint32_t>(outputs.size()), outputs.data());
    const auto reply = ownReply(xcb_randr_set_crtc_config_reply(connection.get(), cookie, nullptr));
    if (!reply || reply->status != XCB_RANDR_SET_CONFIG_SUCCESS) {
        throw std::runtime_error("the server refuses to change an output");
    }
}

void setScreenSize(const XConnection& connection, const std::vector<Output>& outputs) {
    int width = 64;
    int height = 64;
    for (const Output& output : outputs) {
        width = std::max(width, output.position.x + output.size.width);
        height = std::max(height, output.position.y + output.size.height);
    }
    require(connection,
            xcb_randr_set_screen_size_checked(connection.get(), connection.root(),
                                              unsigned16(width), unsigned16(height),
                                              millimeters(width), millimeters(height)),
            "resizing the screen");
}

// Nobody sees what lies between the old and the new arrangement.
class ServerGrab {
public:
    explicit ServerGrab(const XConnection& connection) : connection_(connection) {
        xcb_grab_server(connection_.get());
    }
    ~ServerGrab() {
        xcb_ungrab_server(connection_.get());
        xcb_flush(connection_.get());
    }
    ServerGrab(const ServerGrab&) = delete;
    ServerGrab& operator=(const ServerGrab&) = delete;

private:
    const XConnection& connection_;
};

} // namespace

void setMonitors(const XConnection& connection, const std::vector<PixelRect>& monitors) {
    const ServerGrab grab(connection);
    deleteMonitors(connection);
    const std::vector<xcb_randr_output_t> outputs = resourcesOf(connection).outputs;
    for (std::size_t i = 0; i < monitors.size(); ++i) {
        // The first one takes the output, so that the server adds no monitor of its own for it.
        setMonitor(connection, monitors[i], i,
                   i == 0 && !outputs.empty() ? outputs.front() : xcb_randr_output_t{XCB_NONE});
    }
    connection.sync();
}

void setOutputs(const XConnection& connection, const std::vector<Output>& outputs) {
    const ServerGrab grab(connection);
    const Resources resources = resourcesOf(connection);
    for (const xcb_randr_crtc_t crtc : resources.crtcs) {
        setCrtc(connection, crtc, {}, XCB_NONE, {});
    }
    setScreenSize(connection, outputs);
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        const xcb_randr_output_t output = resources.outputs.at(i);
        const xcb_randr_mode_t mode = makeMode(connection, outputs[i]);
        require(connection, xcb_randr_add_output_mode_checked(connection.get(), output, mode),
                "adding a mode");
        setCrtc(connection, resources.crtcs.at(i), outputs[i].position, mode, {output});
    }
    connection.sync();
}

} // namespace vantrel::desktop
