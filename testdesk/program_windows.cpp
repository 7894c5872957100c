#include "testdesk/program_windows.h"

#include "testdesk/wait.h"

#include <algorithm>

namespace vantrel::desktop {
namespace {

template <typename T>
bool agrees(const std::optional<T>& wanted, const T& found) {
    return !wanted || *wanted == found;
}

std::optional<PixelRect> areaOf(const XConnection& connection, xcb_window_t window) {
    const auto size = xcb_get_geometry(connection.get(), window);
    const auto origin =
        xcb_translate_coordinates(connection.get(), window, connection.root(), 0, 0);
    const auto geometry = ownReply(xcb_get_geometry_reply(connection.get(), size, nullptr));
    const auto place = ownReply(xcb_translate_coordinates_reply(connection.get(), origin, nullptr));
    if (!geometry || !place) {
        return {};
    }
    return PixelRect{place->dst_x, place->dst_y, geometry->width, geometry->height};
}

bool isViewable(const XConnection& connection, xcb_window_t window) {
    const auto reply = ownReply(xcb_get_window_attributes_reply(
        connection.get(), xcb_get_window_attributes(connection.get(), window), nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

std::string typeOf(const XConnection& connection, xcb_window_t window) {
    const auto types = connection.property(window, "_NET_WM_WINDOW_TYPE");
    return types.empty() ? std::string() : connection.atomName(types.front());
}

std::string programOf(const XConnection& connection, xcb_window_t window) {
    const std::string names = connection.text(window, "WM_CLASS");
    return names.substr(0, names.find('\0'));
}

// A message about a window, to it or to the window manager, which listens at the root.
void send(const XConnection& connection, xcb_window_t destination, xcb_window_t window,
          const std::string& type, std::uint32_t value) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = connection.atom(type);
    message.data.data32[0] = value;
    const std::uint32_t mask =
        destination != connection.root()
            ? XCB_EVENT_MASK_NO_EVENT
            : XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_send_event(connection.get(), 0, destination, mask, reinterpret_cast<const char*>(&message));
    connection.sync();
}

} // namespace

bool WindowQuery::matches(const WindowState& window) const {
    return window.program == program && agrees(title, window.title) && agrees(type, window.type) &&
           agrees(width, window.area.width) && agrees(height, window.area.height);
}

std::optional<WindowState> stateOf(const XConnection& connection, xcb_window_t window) {
    const auto area = areaOf(connection, window);
    if (!area) {
        return {};
    }
    return WindowState{.id = window,
                       .area = *area,
                       .visible = isViewable(connection, window),
                       .program = programOf(connection, window),
                       .title = connection.text(window, "_NET_WM_NAME"),
                       .type = typeOf(connection, window)};
}

std::vector<xcb_window_t> windowsWithin(const XConnection& connection, xcb_window_t window) {
    std::vector<xcb_window_t> found{window};
    for (std::size_t next = 0; next < found.size(); ++next) {
        const auto tree = ownReply(xcb_query_tree_reply(
            connection.get(), xcb_query_tree(connection.get(), found[next]), nullptr));
        if (tree) {
            const auto* children = xcb_query_tree_children(tree.get());
            found.insert(found.end(), children,
                         children + xcb_query_tree_children_length(tree.get()));
        }
    }
    return found;
}

std::vector<WindowState> visibleWindows(const XConnection& connection, const WindowQuery& query) {
    std::vector<WindowState> found;
    for (const xcb_window_t window : windowsWithin(connection, connection.root())) {
        const auto state = programOf(connection, window) == query.program
                               ? stateOf(connection, window)
                               : std::nullopt;
        if (state && state->visible && query.matches(*state)) {
            found.push_back(*state);
        }
    }
    return found;
}

std::optional<WindowState> waitForWindow(const XConnection& connection, const WindowQuery& query,
                                         std::chrono::milliseconds limit) {
    std::vector<WindowState> found;
    const bool appeared = waitFor(
        [&] {
            found = visibleWindows(connection, query);
            return !found.empty();
        },
        limit);
    return appeared ? std::optional(found.front()) : std::nullopt;
}

bool waitUntilGone(const XConnection& connection, const WindowQuery& query,
                   std::chrono::milliseconds limit) {
    return waitFor([&] { return visibleWindows(connection, query).empty(); }, limit);
}

bool hasFocus(const XConnection& connection, xcb_window_t window) {
    const auto reply = ownReply(xcb_get_input_focus_reply(
        connection.get(), xcb_get_input_focus(connection.get()), nullptr));
    return reply &&
           std::ranges::count(windowsWithin(connection, window), xcb_window_t{reply->focus}) > 0;
}

PixelRect framed(const XConnection& connection, const WindowState& window) {
    const auto extents = connection.property(window.id, "_NET_FRAME_EXTENTS");
    if (extents.size() != 4) {
        return window.area;
    }
    const auto edge = [&extents](std::size_t side) { return static_cast<int>(extents[side]); };
    const auto& [x, y, width, height] = window.area;
    return {x - edge(0), y - edge(2), width + edge(0) + edge(1), height + edge(2) + edge(3)};
}

PixelPoint centerOf(const PixelRect& area) {
    return {area.x + area.width / 2, area.y + area.height / 2};
}

void clickIn(SyntheticInput& input, const WindowState& window, PixelPoint place, Button button) {
    input.moveTo({window.area.x + place.x, window.area.y + place.y});
    input.click(button);
}

bool typeIn(SyntheticInput& input, const XConnection& connection, const WindowState& window,
            const std::vector<std::uint32_t>& keysyms) {
    if (!waitFor([&] { return hasFocus(connection, window.id); })) {
        return false;
    }
    input.typeChord(keysyms);
    return true;
}

void requestClose(const XConnection& connection, const WindowState& window) {
    send(connection, window.id, window.id, "WM_PROTOCOLS", connection.atom("WM_DELETE_WINDOW"));
}

void requestMinimized(const XConnection& connection, const WindowState& window) {
    constexpr std::uint32_t iconic = 3;
    send(connection, connection.root(), window.id, "WM_CHANGE_STATE", iconic);
}

void requestWorkspace(const XConnection& connection, std::uint32_t number) {
    send(connection, connection.root(), connection.root(), "_NET_CURRENT_DESKTOP", number);
}

} // namespace vantrel::desktop
