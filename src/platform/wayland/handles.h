#pragma once

#include <memory>

struct ext_image_capture_source_v1;
struct ext_image_copy_capture_cursor_session_v1;
struct ext_image_copy_capture_manager_v1;
struct ext_output_image_capture_source_manager_v1;
struct wl_buffer;
struct wl_callback;
struct wl_compositor;
struct wl_display;
struct wl_keyboard;
struct wl_output;
struct wl_pointer;
struct wl_registry;
struct wl_seat;
struct wl_shm;
struct wl_subcompositor;
struct wl_subsurface;
struct wl_surface;
struct wp_viewport;
struct wp_viewporter;
struct zwlr_layer_shell_v1;
struct zwlr_layer_surface_v1;
struct zxdg_output_manager_v1;
struct zxdg_output_v1;

namespace vantrel::wayland {

// Tells the compositor that the object is no longer needed.
struct Release {
    void operator()(ext_image_capture_source_v1* source) const;
    void operator()(ext_image_copy_capture_cursor_session_v1* session) const;
    void operator()(ext_image_copy_capture_manager_v1* manager) const;
    void operator()(ext_output_image_capture_source_manager_v1* manager) const;
    void operator()(wl_buffer* buffer) const;
    void operator()(wl_callback* callback) const;
    void operator()(wl_compositor* compositor) const;
    void operator()(wl_keyboard* keyboard) const;
    void operator()(wl_output* output) const;
    void operator()(wl_pointer* pointer) const;
    void operator()(wl_registry* registry) const;
    void operator()(wl_seat* seat) const;
    void operator()(wl_shm* shm) const;
    void operator()(wl_subcompositor* subcompositor) const;
    void operator()(wl_subsurface* subsurface) const;
    void operator()(wl_surface* surface) const;
    void operator()(wp_viewport* viewport) const;
    void operator()(wp_viewporter* viewporter) const;
    void operator()(zwlr_layer_shell_v1* shell) const;
    void operator()(zwlr_layer_surface_v1* surface) const;
    void operator()(zxdg_output_manager_v1* manager) const;
    void operator()(zxdg_output_v1* output) const;
};

template <typename T>
using Handle = std::unique_ptr<T, Release>;

} // namespace vantrel::wayland
