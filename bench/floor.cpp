// The least that a follower of the pointer can do: one small translucent window with one disc as
// its background, moved once for each batch of raw motion. With --display-link it also asks for
// every frame of the display, and for the pointer at each. With --shortcut it follows nothing: the
// window is made ready where the pointer is, and mapped and unmapped by Control Alt H.

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <poll.h>
#include <xcb/present.h>
#include <xcb/shape.h>
#include <xcb/xcb.h>
#include <xcb/xinput.h>

namespace {

constexpr int side = 64;

xcb_visualid_t translucentVisual(const xcb_screen_t& screen) {
    auto depth = xcb_screen_allowed_depths_iterator(&screen);
    while (depth.data->depth != 32) {
        xcb_depth_next(&depth);
    }
    return xcb_depth_visuals(depth.data)->visual_id;
}

// 0xFACC15 at 0.35, premultiplied, with a soft edge of one pixel.
std::vector<std::uint32_t> disc() {
    std::vector<std::uint32_t> pixels;
    for (int i = 0; i < side * side; ++i) {
        const double x = i % side - side / 2.0 + 0.5;
        const int row = i / side;
        const double y = row - side / 2.0 + 0.5;
        const double cover = std::fmin(std::fmax(side / 2.0 - std::hypot(x, y) + 0.5, 0.0), 1.0);
        const auto channel = [&](double value) {
            return static_cast<std::uint32_t>(std::lround(value * 0.35 * cover));
        };
        pixels.push_back(channel(255) << 24 | channel(250) << 16 | channel(204) << 8 | channel(21));
    }
    return pixels;
}

xcb_window_t makeWindow(xcb_connection_t* c, const xcb_screen_t& screen) {
    const xcb_visualid_t visual = translucentVisual(screen);
    const xcb_colormap_t colormap = xcb_generate_id(c);
    xcb_create_colormap(c, XCB_COLORMAP_ALLOC_NONE, colormap, screen.root, visual);
    const xcb_pixmap_t picture = xcb_generate_id(c);
    xcb_create_pixmap(c, 32, picture, screen.root, side, side);
    const xcb_gcontext_t gc = xcb_generate_id(c);
    xcb_create_gc(c, gc, picture, 0, nullptr);
    const std::vector<std::uint32_t> pixels = disc();
    xcb_put_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, picture, gc, side, side, 0, 0, 0, 32,
                  side * side * 4, reinterpret_cast<const std::uint8_t*>(pixels.data()));
    const std::array<std::uint32_t, 4> values{picture, 0, 1, colormap};
    const xcb_window_t window = xcb_generate_id(c);
    xcb_create_window(c, 32, window, screen.root, -side, -side, side, side, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT |
                          XCB_CW_COLORMAP,
                      values.data());
    xcb_shape_rectangles(c, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
                         window, 0, 0, 0, nullptr);
    xcb_map_window(c, window);
    return window;
}

void selectRawMotion(xcb_connection_t* c, xcb_window_t root) {
    std::free(xcb_input_xi_query_version_reply(c, xcb_input_xi_query_version(c, 2, 2), nullptr));
    struct {
        xcb_input_event_mask_t header{XCB_INPUT_DEVICE_ALL_MASTER, 1};
        std::uint32_t mask = XCB_INPUT_XI_EVENT_MASK_RAW_MOTION;
    } selection;
    xcb_input_xi_select_events(c, root, 1, &selection.header);
}

void follow(xcb_connection_t* c, xcb_window_t root, xcb_window_t window, bool always) {
    static std::array<std::uint32_t, 2> last{};
    auto* pointer = xcb_query_pointer_reply(c, xcb_query_pointer(c, root), nullptr);
    if (pointer == nullptr) {
        return;
    }
    const std::array<std::uint32_t, 2> place{
        static_cast<std::uint32_t>(pointer->root_x - side / 2),
        static_cast<std::uint32_t>(pointer->root_y - side / 2)};
    std::free(pointer);
    if (place != last || always) {
        xcb_configure_window(c, window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, place.data());
        last = place;
    }
    xcb_flush(c);
}

xcb_keycode_t keycodeOf(xcb_connection_t* c, xcb_keysym_t symbol) {
    const xcb_setup_t* setup = xcb_get_setup(c);
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    auto* keys = xcb_get_keyboard_mapping_reply(
        c, xcb_get_keyboard_mapping(c, setup->min_keycode, count), nullptr);
    const auto* first = xcb_get_keyboard_mapping_keysyms(keys);
    xcb_keycode_t key = setup->min_keycode;
    while (*first != symbol) {
        first += keys->keysyms_per_keycode;
        ++key;
    }
    std::free(keys);
    return key;
}

void mapAtShortcut(xcb_connection_t* c, xcb_window_t root, xcb_window_t window) {
    xcb_grab_key(c, 0, root, XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1, keycodeOf(c, 'h'),
                 XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    xcb_flush(c);
    bool mapped = true;
    while (xcb_generic_event_t* event = xcb_wait_for_event(c)) {
        if (event->response_type == XCB_KEY_PRESS) {
            mapped = !mapped;
            mapped ? xcb_map_window(c, window) : xcb_unmap_window(c, window);
            xcb_flush(c);
        }
        std::free(event);
    }
}

} // namespace

int main(int argc, char** argv) {
    const auto asked = [&](const char* option) {
        return argc > 1 && std::strcmp(argv[1], option) == 0;
    };
    const bool displayLink = asked("--display-link");
    xcb_connection_t* c = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(c) != 0) {
        return EXIT_FAILURE;
    }
    const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    const xcb_window_t window = makeWindow(c, screen);
    if (asked("--shortcut")) {
        follow(c, screen.root, window, true);
        mapAtShortcut(c, screen.root, window);
        return EXIT_SUCCESS;
    }
    selectRawMotion(c, screen.root);
    if (displayLink) {
        xcb_present_select_input(c, xcb_generate_id(c), window,
                                 XCB_PRESENT_EVENT_MASK_COMPLETE_NOTIFY);
        xcb_present_notify_msc(c, window, 0, 0, 1, 0);
    }
    follow(c, screen.root, window, true);

    const std::uint8_t present = xcb_get_extension_data(c, &xcb_present_id)->major_opcode;
    while (xcb_connection_has_error(c) == 0) {
        pollfd readable{xcb_get_file_descriptor(c), POLLIN, 0};
        poll(&readable, 1, -1);
        bool any = false;
        while (xcb_generic_event_t* event = xcb_poll_for_event(c)) {
            any = true;
            const auto& generic = *reinterpret_cast<xcb_ge_generic_event_t*>(event);
            if (generic.response_type == XCB_GE_GENERIC && generic.extension == present) {
                xcb_present_notify_msc(c, window, 0, 0, 1, 0);
            }
            std::free(event);
        }
        if (any) {
            follow(c, screen.root, window, false);
        }
    }
    xcb_disconnect(c);
    return EXIT_SUCCESS;
}
