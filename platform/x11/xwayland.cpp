#include "platform/x11/xwayland.h"

#include "platform/x11/connection.h"

#include <algorithm>
#include <span>
#include <string_view>

#include <xcb/randr.h>

namespace vantrel::x11 {

namespace {

// Since 23.1.
constexpr std::string_view extensionName = "XWAYLAND";
// Before that; later ones go by the compositor's names.
constexpr std::string_view outputPrefix = "XWAYLAND";

constexpr std::uint16_t buttons = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3 |
                                  XCB_BUTTON_MASK_4 | XCB_BUTTON_MASK_5;

bool isOutputOfXwayland(xcb_connection_t* connection, xcb_randr_output_t output) {
    const Owned<xcb_randr_get_output_info_reply_t> info(xcb_randr_get_output_info_reply(
        connection, xcb_randr_get_output_info(connection, output, XCB_CURRENT_TIME), nullptr));
    return info && std::string_view(
                       reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())),
                       static_cast<std::size_t>(xcb_randr_get_output_info_name_length(info.get())))
                       .starts_with(outputPrefix);
}

} // namespace

bool isXwayland(xcb_connection_t* connection, xcb_window_t root) {
    const auto extension =
        xcb_query_extension(connection, extensionName.size(), extensionName.data());
    const auto current = xcb_randr_get_screen_resources_current(connection, root);
    const Owned<xcb_query_extension_reply_t> found(
        xcb_query_extension_reply(connection, extension, nullptr));
    const Owned<xcb_randr_get_screen_resources_current_reply_t> resources(
        xcb_randr_get_screen_resources_current_reply(connection, current, nullptr));
    if (found && found->present != 0) {
        return true;
    }
    if (!resources) {
        return false;
    }
    const std::span outputs(
        xcb_randr_get_screen_resources_current_outputs(resources.get()),
        static_cast<std::size_t>(
            xcb_randr_get_screen_resources_current_outputs_length(resources.get())));
    return std::ranges::any_of(outputs, [connection](xcb_randr_output_t output) {
        return isOutputOfXwayland(connection, output);
    });
}

// A drag that began in one of its windows is followed wherever it leads, unless the compositor has
// taken it over: the button then stays down, at the place where the pointer left.
bool XwaylandPointer::tells(const xcb_query_pointer_reply_t& answer) {
    const QPoint place(answer.root_x, answer.root_y);
    if (answer.child != XCB_NONE) {
        lastInside_ = place;
        return true;
    }
    return (answer.mask & buttons) != 0 && place != lastInside_;
}

} // namespace vantrel::x11
