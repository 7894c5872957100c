// The least that a follower of the pointer can do in a compositor with a layer shell: one clear
// surface over a display, with one disc in it that is moved once for each frame. The argument is
// the number of the descriptor from which it reads where the pointer is, in pairs of 32-bit
// numbers: points of the display. Without one the compositor tells it, by a cursor session on its
// only display, of scale 1.

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <type_traits>

#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-image-copy-capture.h>
#include <wayland-layer-shell.h>
#include <wayland-viewporter.h>

namespace {

constexpr int side = 64;

struct Place {
    std::int32_t x = 0;
    std::int32_t y = 0;
};

struct Follower {
    wl_compositor* compositor = nullptr;
    wl_subcompositor* subcompositor = nullptr;
    wl_shm* shm = nullptr;
    wp_viewporter* viewporter = nullptr;
    zwlr_layer_shell_v1* shell = nullptr;
    wl_seat* seat = nullptr;
    wl_output* output = nullptr;
    ext_image_copy_capture_manager_v1* captures = nullptr;
    ext_output_image_capture_source_manager_v1* sources = nullptr;
    wl_buffer* disc = nullptr;
    wl_surface* surface = nullptr;
    wp_viewport* view = nullptr;
    wl_subsurface* mark = nullptr;
    std::optional<Place> place{}; // that is not shown yet
    bool mayShow = false;         // since the last frame is on the display
};

void bind(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
          std::uint32_t /*version*/) {
    auto& follower = *static_cast<Follower*>(data);
    const auto take = [&](auto*& global, const wl_interface& wanted, std::uint32_t version) {
        if (std::string_view(interface) == wanted.name) {
            global = static_cast<std::remove_reference_t<decltype(global)>>(
                wl_registry_bind(registry, name, &wanted, version));
        }
    };
    take(follower.compositor, wl_compositor_interface, 4);
    take(follower.subcompositor, wl_subcompositor_interface, 1);
    take(follower.shm, wl_shm_interface, 1);
    take(follower.viewporter, wp_viewporter_interface, 1);
    take(follower.shell, zwlr_layer_shell_v1_interface, 1);
    take(follower.seat, wl_seat_interface, 1);
    take(follower.output, wl_output_interface, 1);
    take(follower.captures, ext_image_copy_capture_manager_v1_interface, 1);
    take(follower.sources, ext_output_image_capture_source_manager_v1_interface, 1);
}

// 0xFACC15 at 0.35, premultiplied, with a soft edge of one pixel; the pixels of its corners are
// clear.
wl_buffer* makeDisc(wl_shm* shm) {
    constexpr int bytes = side * side * 4;
    const int file = memfd_create("disc", MFD_CLOEXEC);
    void* memory = MAP_FAILED;
    if (ftruncate(file, bytes) == 0) {
        memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    }
    if (memory == MAP_FAILED) {
        std::exit(1);
    }
    for (int i = 0; i < side * side; ++i) {
        const int row = i / side;
        const double distance = std::hypot(i % side - side / 2.0 + 0.5, row - side / 2.0 + 0.5);
        const double cover = std::fmin(std::fmax(side / 2.0 - distance + 0.5, 0.0), 1.0);
        const auto channel = [&](double value) {
            return static_cast<std::uint32_t>(std::lround(value * 0.35 * cover));
        };
        static_cast<std::uint32_t*>(memory)[i] =
            channel(255) << 24 | channel(250) << 16 | channel(204) << 8 | channel(21);
    }
    auto* pool = wl_shm_create_pool(shm, file, bytes);
    return wl_shm_pool_create_buffer(pool, 0, side, side, side * 4, WL_SHM_FORMAT_ARGB8888);
}

void show(Follower& follower) {
    static const wl_callback_listener frame{[](void* data, wl_callback* callback, std::uint32_t) {
        auto& self = *static_cast<Follower*>(data);
        wl_callback_destroy(callback);
        self.mayShow = true;
        show(self);
    }};
    if (follower.place && follower.mayShow) {
        follower.mayShow = false;
        wl_callback_add_listener(wl_surface_frame(follower.surface), &frame, &follower);
        wl_subsurface_set_position(follower.mark, follower.place->x - side / 2,
                                   follower.place->y - side / 2);
        wl_surface_commit(follower.surface);
        follower.place.reset();
    }
}

void configure(void* data, zwlr_layer_surface_v1* layer, std::uint32_t serial, std::uint32_t width,
               std::uint32_t height) {
    auto& follower = *static_cast<Follower*>(data);
    zwlr_layer_surface_v1_ack_configure(layer, serial);
    wp_viewport_set_source(follower.view, 0, 0, wl_fixed_from_int(1), wl_fixed_from_int(1));
    wp_viewport_set_destination(follower.view, static_cast<std::int32_t>(width),
                                static_cast<std::int32_t>(height));
    wl_surface_attach(follower.surface, follower.disc, 0, 0);
    wl_surface_commit(follower.surface);
    follower.mayShow = true;
}

void makeSurfaces(Follower& follower) {
    static const zwlr_layer_surface_v1_listener events{
        configure, [](void*, zwlr_layer_surface_v1*) { std::exit(0); }};
    auto* nothing = wl_compositor_create_region(follower.compositor);
    const auto makeSurface = [&] {
        auto* surface = wl_compositor_create_surface(follower.compositor);
        wl_surface_set_input_region(surface, nothing);
        return surface;
    };
    follower.surface = makeSurface();
    follower.view = wp_viewporter_get_viewport(follower.viewporter, follower.surface);
    auto* layer = zwlr_layer_shell_v1_get_layer_surface(
        follower.shell, follower.surface, nullptr, ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "follower");
    zwlr_layer_surface_v1_add_listener(layer, &events, &follower);
    zwlr_layer_surface_v1_set_anchor(
        layer, ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
                   ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT);
    zwlr_layer_surface_v1_set_exclusive_zone(layer, -1);
    auto* disc = makeSurface();
    follower.mark = wl_subcompositor_get_subsurface(follower.subcompositor, disc, follower.surface);
    wl_subsurface_set_position(follower.mark, -side, -side);
    wl_surface_attach(disc, follower.disc, 0, 0);
    wl_surface_commit(disc);
    wl_surface_commit(follower.surface);
}

void listen(Follower& follower) {
    static const ext_image_copy_capture_cursor_session_v1_listener events{
        [](void*, auto*) {}, [](void*, auto*) {},
        [](void* data, auto*, std::int32_t x, std::int32_t y) {
            static_cast<Follower*>(data)->place = Place{x, y};
        },
        [](void*, auto*, std::int32_t, std::int32_t) {}};
    ext_image_copy_capture_cursor_session_v1_add_listener(
        ext_image_copy_capture_manager_v1_create_pointer_cursor_session(
            follower.captures,
            ext_output_image_capture_source_manager_v1_create_source(follower.sources,
                                                                     follower.output),
            wl_seat_get_pointer(follower.seat)),
        &events, &follower);
}

// Takes the last one that has come. False when no more will.
bool readPlaces(int descriptor, std::optional<Place>& place) {
    std::array<Place, 512> places{};
    const auto size = read(descriptor, places.data(), sizeof(places));
    if (size >= static_cast<ssize_t>(sizeof(Place))) {
        place = places.at(static_cast<std::size_t>(size) / sizeof(Place) - 1);
    }
    return size > 0;
}

} // namespace

int main(int argc, char** argv) {
    auto* display = wl_display_connect(nullptr);
    if (display == nullptr) {
        return 1;
    }
    const int places = argc > 1 ? std::atoi(argv[1]) : -1;
    Follower follower;
    const wl_registry_listener globals{bind, [](void*, wl_registry*, std::uint32_t) {}};
    wl_registry_add_listener(wl_display_get_registry(display), &globals, &follower);
    wl_display_roundtrip(display);
    if (follower.shell == nullptr || follower.viewporter == nullptr) {
        return 1;
    }
    follower.disc = makeDisc(follower.shm);
    makeSurfaces(follower);
    if (places < 0) {
        listen(follower);
    }
    std::array<pollfd, 2> ready{{{wl_display_get_fd(display), POLLIN, 0}, {places, POLLIN, 0}}};
    while (wl_display_flush(display) >= 0 && poll(ready.data(), ready.size(), -1) > 0) {
        if (ready[0].revents != 0 && wl_display_dispatch(display) < 0) {
            return 1;
        }
        if (ready[1].revents != 0 && !readPlaces(places, follower.place)) {
            return 0;
        }
        show(follower);
    }
    return 1;
}
