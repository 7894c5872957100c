#pragma once

#include "testdesk/synthetic_input.h"
#include "testdesk/x_connection.h"

#include <string>
#include <vector>

namespace vantrel::desktop {

struct ClientWindowOptions {
    PixelRect area{100, 100, 400, 300};
    std::uint32_t color = 0xFF336699; // 0xAARRGGBB, not premultiplied
    bool translucent = false;         // whether the alpha of the color counts
    bool overrideRedirect = true;     // out of the window manager's hands
    bool fullScreen = false;          // asks the window manager for it
    bool recordsMotion = false;       // besides button presses and releases
    std::string type{};               // such as _NET_WM_WINDOW_TYPE_DND
};

struct InputEvent {
    enum class Type { buttonPress, buttonRelease, motion, keyPress, keyRelease };

    Type type = Type::buttonPress;
    std::uint8_t detail = 0; // button or key code
    PixelPoint place{};      // on the screen

    bool operator==(const InputEvent&) const = default;
};

// Another program's window of one colour, over a connection of its own. It is on the screen when
// the constructor returns.
class ClientWindow {
public:
    ClientWindow(const std::string& display, const ClientWindowOptions& options);

    [[nodiscard]] const XConnection& connection() const { return connection_; }
    [[nodiscard]] xcb_window_t id() const { return window_; }
    // All that it received so far, oldest first.
    const std::vector<InputEvent>& events();

    void raise();
    void setColor(std::uint32_t color); // of a window that is not translucent: alpha is ignored
    // Grabs of another program, held until this is destroyed, or released. Whether granted.
    bool grabPointer();
    bool grabKeyboard();
    void releaseKeyboard();
    bool grabKey(std::uint8_t keycode, std::uint16_t modifiers);

private:
    void create(const ClientWindowOptions& options);
    void describe(const ClientWindowOptions& options);
    void take(const xcb_generic_event_t& event);
    void readEvents();

    XConnection connection_;
    xcb_window_t window_ = XCB_NONE;
    std::vector<InputEvent> events_;
    bool visible_ = false;
};

} // namespace vantrel::desktop
