#include "testdesk/client_window.h"

#include "testdesk/wait.h"

#include <array>
#include <stdexcept>

namespace vantrel::desktop {
namespace {

std::uint32_t premultiplied(std::uint32_t color) {
    const std::uint32_t alpha = color >> 24;
    std::uint32_t result = alpha << 24;
    for (const unsigned shift : {0U, 8U, 16U}) {
        result |= ((color >> shift & 0xFF) * alpha + 127) / 255 << shift;
    }
    return result;
}

InputEvent inputEvent(InputEvent::Type type, const xcb_button_press_event_t& event) {
    return {.type = type, .detail = event.detail, .place = {event.root_x, event.root_y}};
}

template <typename GrabReply>
bool granted(const Reply<GrabReply>& reply) {
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

} // namespace

ClientWindow::ClientWindow(const std::string& display, const ClientWindowOptions& options)
    : connection_(display), window_(xcb_generate_id(connection_.get())) {
    create(options);
    describe(options);
    xcb_map_window(connection_.get(), window_);
    xcb_flush(connection_.get());
    const bool shown = waitFor([this] {
        readEvents();
        return visible_;
    });
    if (!shown) {
        throw std::runtime_error("a window did not appear");
    }
}

void ClientWindow::create(const ClientWindowOptions& options) {
    xcb_connection_t* c = connection_.get();
    const xcb_visualid_t visual =
        options.translucent ? connection_.translucentVisual() : connection_.screen().root_visual;
    const xcb_colormap_t colormap = xcb_generate_id(c);
    xcb_create_colormap(c, XCB_COLORMAP_ALLOC_NONE, colormap, connection_.root(), visual);
    std::uint32_t events = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                           XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE |
                           XCB_EVENT_MASK_EXPOSURE;
    if (options.recordsMotion) {
        events |= XCB_EVENT_MASK_POINTER_MOTION;
    }
    const std::array<std::uint32_t, 5> values{
        options.translucent ? premultiplied(options.color) : options.color & 0xFFFFFF, 0,
        options.overrideRedirect ? 1U : 0U, events, colormap};
    xcb_create_window(
        c, options.translucent ? 32 : XCB_COPY_FROM_PARENT, window_, connection_.root(),
        static_cast<std::int16_t>(options.area.x), static_cast<std::int16_t>(options.area.y),
        static_cast<std::uint16_t>(options.area.width),
        static_cast<std::uint16_t>(options.area.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
        XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK |
            XCB_CW_COLORMAP,
        values.data());
}

void ClientWindow::describe(const ClientWindowOptions& options) {
    const auto setAtom = [this](const std::string& property, const std::string& value) {
        const xcb_atom_t atom = connection_.atom(value);
        xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window_,
                            connection_.atom(property), XCB_ATOM_ATOM, 32, 1, &atom);
    };
    if (options.fullScreen) {
        setAtom("_NET_WM_STATE", "_NET_WM_STATE_FULLSCREEN");
    }
    if (!options.type.empty()) {
        setAtom("_NET_WM_WINDOW_TYPE", options.type);
    }
    // User position and size, so that the window manager does not place it elsewhere.
    const std::array<std::uint32_t, 18> hints{1 | 2, static_cast<std::uint32_t>(options.area.x),
                                              static_cast<std::uint32_t>(options.area.y),
                                              static_cast<std::uint32_t>(options.area.width),
                                              static_cast<std::uint32_t>(options.area.height)};
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, hints.size(), hints.data());
}

const std::vector<InputEvent>& ClientWindow::events() {
    connection_.sync();
    readEvents();
    return events_;
}

void ClientWindow::readEvents() {
    while (const auto event = ownReply(xcb_poll_for_event(connection_.get()))) {
        take(*event);
    }
}

void ClientWindow::take(const xcb_generic_event_t& event) {
    // Presses, releases and motion share one layout.
    const auto& input = reinterpret_cast<const xcb_button_press_event_t&>(event);
    switch (event.response_type & 0x7F) {
    case XCB_BUTTON_PRESS:
        events_.push_back(inputEvent(InputEvent::Type::buttonPress, input));
        break;
    case XCB_BUTTON_RELEASE:
        events_.push_back(inputEvent(InputEvent::Type::buttonRelease, input));
        break;
    case XCB_MOTION_NOTIFY:
        events_.push_back(inputEvent(InputEvent::Type::motion, input));
        break;
    case XCB_KEY_PRESS:
        events_.push_back(inputEvent(InputEvent::Type::keyPress, input));
        break;
    case XCB_KEY_RELEASE:
        events_.push_back(inputEvent(InputEvent::Type::keyRelease, input));
        break;
    case XCB_EXPOSE:
        visible_ = true;
        break;
    default:
        break;
    }
}

void ClientWindow::raise() {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(connection_.get(), window_, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    connection_.sync();
}

void ClientWindow::setColor(std::uint32_t color) {
    const std::uint32_t pixel = color & 0xFFFFFF;
    xcb_change_window_attributes(connection_.get(), window_, XCB_CW_BACK_PIXEL, &pixel);
    xcb_clear_area(connection_.get(), 0, window_, 0, 0, 0, 0);
    connection_.sync();
}

bool ClientWindow::grabPointer() {
    const auto cookie = xcb_grab_pointer(
        connection_.get(), 0, window_, XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE,
        XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
    return granted(ownReply(xcb_grab_pointer_reply(connection_.get(), cookie, nullptr)));
}

bool ClientWindow::grabKeyboard() {
    const auto cookie = xcb_grab_keyboard(connection_.get(), 0, window_, XCB_CURRENT_TIME,
                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    return granted(ownReply(xcb_grab_keyboard_reply(connection_.get(), cookie, nullptr)));
}

void ClientWindow::releaseKeyboard() {
    xcb_ungrab_keyboard(connection_.get(), XCB_CURRENT_TIME);
    connection_.sync();
}

bool ClientWindow::grabKey(std::uint8_t keycode, std::uint16_t modifiers) {
    const auto cookie = xcb_grab_key_checked(connection_.get(), 0, connection_.root(), modifiers,
                                             keycode, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    return !ownReply(xcb_request_check(connection_.get(), cookie));
}

} // namespace vantrel::desktop
