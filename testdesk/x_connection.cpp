#include "testdesk/x_connection.h"

#include <stdexcept>

namespace vantrel::desktop {

XConnection::XConnection(const std::string& display)
    : connection_(xcb_connect(display.c_str(), nullptr)) {
    if (failed()) {
        throw std::runtime_error("cannot connect to the display " + display);
    }
    screen_ = xcb_setup_roots_iterator(xcb_get_setup(get())).data;
}

xcb_atom_t XConnection::atom(const std::string& name) const {
    const auto cookie =
        xcb_intern_atom(get(), 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const auto reply = ownReply(xcb_intern_atom_reply(get(), cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

std::vector<std::uint32_t> XConnection::property(xcb_window_t window,
                                                 const std::string& name) const {
    const auto cookie =
        xcb_get_property(get(), 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 1024);
    const auto reply = ownReply(xcb_get_property_reply(get(), cookie, nullptr));
    if (!reply || reply->format != 32) {
        return {};
    }
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

std::string XConnection::text(xcb_window_t window, const std::string& name) const {
    const auto cookie =
        xcb_get_property(get(), 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 1024);
    const auto reply = ownReply(xcb_get_property_reply(get(), cookie, nullptr));
    if (!reply || reply->format != 8) {
        return {};
    }
    return {static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len};
}

std::string XConnection::atomName(xcb_atom_t atom) const {
    const auto reply =
        ownReply(xcb_get_atom_name_reply(get(), xcb_get_atom_name(get(), atom), nullptr));
    if (!reply) {
        return {};
    }
    return {xcb_get_atom_name_name(reply.get()), reply->name_len};
}

std::optional<std::uint8_t> XConnection::majorOpcode(const std::string& extension) const {
    const auto cookie =
        xcb_query_extension(get(), static_cast<std::uint16_t>(extension.size()), extension.c_str());
    const auto reply = ownReply(xcb_query_extension_reply(get(), cookie, nullptr));
    if (!reply || reply->present == 0) {
        return {};
    }
    return reply->major_opcode;
}

xcb_visualid_t XConnection::translucentVisual() const {
    for (auto depth = xcb_screen_allowed_depths_iterator(screen_); depth.rem > 0;
         xcb_depth_next(&depth)) {
        if (depth.data->depth == 32 && xcb_depth_visuals_length(depth.data) > 0) {
            return xcb_depth_visuals(depth.data)->visual_id;
        }
    }
    throw std::runtime_error("the display has no visual of depth 32");
}

void XConnection::sync() const {
    static_cast<void>(pointer());
}

PixelPoint XConnection::pointer() const {
    const auto reply =
        ownReply(xcb_query_pointer_reply(get(), xcb_query_pointer(get(), root()), nullptr));
    if (!reply) {
        throw std::runtime_error("the display went away");
    }
    return {reply->root_x, reply->root_y};
}

} // namespace vantrel::desktop
