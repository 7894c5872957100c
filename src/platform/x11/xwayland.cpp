#include "platform/x11/xwayland.h"

#include "platform/x11/property.h"

#include <span>
#include <string_view>
#include <utility>

#include <xcb/randr.h>

namespace vantrel::x11 {

namespace {

// Since 23.1.
constexpr std::string_view extensionName = "XWAYLAND";
// Before that; later ones go by the compositor's names.
constexpr std::string_view outputPrefix = "XWAYLAND";

constexpr unsigned buttons = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3 |
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
    // All of them are, or none.
    return !outputs.empty() && isOutputOfXwayland(connection, outputs.front());
}

// A drag that began in one of its windows is followed wherever it leads, unless the compositor has
// taken it over: the button then stays down, at the place where the pointer left.
bool StalePointerFilter::accepts(const PointerSample& sample, double now) {
    if (std::exchange(last_, sample) != sample) {
        changed_ = now;
    }
    if (sample.inside) {
        lastInside_ = sample.place;
    }
    const bool dragged = sample.held && sample.place != lastInside_;
    return sample.focused && (sample.inside || dragged) && now - changed_ < restTimeout;
}

XwaylandPointer::XwaylandPointer(Connection& connection)
    : connection_(connection), events_(connection.addHandler(*this)) {
    connection_.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE);
}

bool XwaylandPointer::isKnown(const xcb_query_pointer_reply_t& answer, double now) {
    return filter_.accepts({.place = QPoint(answer.root_x, answer.root_y),
                            .inside = isInside(answer.child),
                            .held = (answer.mask & buttons) != 0,
                            .focused = isFocused()},
                           now);
}

void XwaylandPointer::handleEvent(const xcb_generic_event_t& event) {
    if (eventNumber(event) == XCB_PROPERTY_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        focusIsStale_ = focusIsStale_ || (change.window == connection_.root() &&
                                          change.atom == connection_.atom(Atom::activeWindow));
    }
}

// Compositors lay a window that shows nothing below all others.
bool XwaylandPointer::isInside(xcb_window_t window) {
    if (std::exchange(window_, window) == window) {
        return inside_;
    }
    inside_ = false;
    if (window != XCB_NONE) {
        const Owned<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
            connection_.xcb(), xcb_get_window_attributes(connection_.xcb(), window), nullptr));
        inside_ = attributes && attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
    }
    return inside_;
}

// While a Wayland program has the keyboard, its window may cover those of X programs, and Xwayland
// does not know of that. Where an overlay takes the pointer from the windows below, one that went
// along would hand the clicks on the upper window to the lower one.
bool XwaylandPointer::isFocused() {
    if (std::exchange(focusIsStale_, false)) {
        // Not every compositor says.
        focused_ = numberOf(connection_, connection_.root(), Atom::activeWindow) != XCB_NONE;
    }
    return focused_;
}

} // namespace vantrel::x11
