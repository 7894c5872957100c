#pragma once

#include "testdesk/synthetic_input.h"
#include "testdesk/x_connection.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace vantrel::desktop {

struct WindowState {
    xcb_window_t id = XCB_NONE;
    PixelRect area{};      // on the screen, without the window manager's frame
    bool visible = false;  // mapped, with everything that it lies in
    std::string program{}; // the instance of its WM_CLASS
    std::string title{};
    std::string type{}; // such as _NET_WM_WINDOW_TYPE_NORMAL; the first of several

    bool operator==(const WindowState&) const = default;
};

// Fields that are left out do not count.
struct WindowQuery {
    std::string program{};
    std::optional<std::string> title{};
    std::optional<std::string> type{};
    std::optional<int> width{};
    std::optional<int> height{};

    [[nodiscard]] bool matches(const WindowState& window) const;
};

// Nothing when it is gone.
[[nodiscard]] std::optional<WindowState> stateOf(const XConnection& connection,
                                                 xcb_window_t window);
// In this window and below it, however deep, itself included.
[[nodiscard]] std::vector<xcb_window_t> windowsWithin(const XConnection& connection,
                                                      xcb_window_t window);
[[nodiscard]] std::vector<WindowState> visibleWindows(const XConnection& connection,
                                                      const WindowQuery& query);

// Nothing when no such window became visible in time.
[[nodiscard]] std::optional<WindowState>
waitForWindow(const XConnection& connection, const WindowQuery& query,
              std::chrono::milliseconds limit = std::chrono::seconds(10));
// Whether there is no such window to see, in time.
[[nodiscard]] bool waitUntilGone(const XConnection& connection, const WindowQuery& query,
                                 std::chrono::milliseconds limit = std::chrono::seconds(10));

// Where the keys go: the window, or one below it, has the focus.
[[nodiscard]] bool hasFocus(const XConnection& connection, xcb_window_t window);

// A window's area with the frame that the window manager has put around it.
[[nodiscard]] PixelRect framed(const XConnection& connection, const WindowState& window);
[[nodiscard]] PixelPoint centerOf(const PixelRect& area);
// The place is relative to the window's top-left corner.
void clickIn(SyntheticInput& input, const WindowState& window, PixelPoint place,
             Button button = Button::left);
// Types once the window has the focus; false, and nothing is typed, when it does not get it.
bool typeIn(SyntheticInput& input, const XConnection& connection, const WindowState& window,
            const std::vector<std::uint32_t>& keysyms);
// Asks for what a click on the close button of a title bar asks for.
void requestClose(const XConnection& connection, const WindowState& window);
// Asks the window manager to take it off the screen for now.
void requestMinimized(const XConnection& connection, const WindowState& window);
// Asks the window manager to show another workspace, by its number from 0.
void requestWorkspace(const XConnection& connection, std::uint32_t number);

} // namespace vantrel::desktop
