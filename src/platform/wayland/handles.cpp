#include "platform/wayland/handles.h"

#include <wayland-client.h>
#include <wayland-image-copy-capture.h>
#include <wayland-layer-shell.h>
#include <wayland-viewporter.h>
#include <wayland-xdg-output.h>

namespace vantrel::wayland {

void Release::operator()(ext_image_capture_source_v1* source) const {
    ext_image_capture_source_v1_destroy(source);
}

void Release::operator()(ext_image_copy_capture_cursor_session_v1* session) const {
    ext_image_copy_capture_cursor_session_v1_destroy(session);
}

void Release::operator()(ext_image_copy_capture_manager_v1* manager) const {
    ext_image_copy_capture_manager_v1_destroy(manager);
}

void Release::operator()(ext_output_image_capture_source_manager_v1* manager) const {
    ext_output_image_capture_source_manager_v1_destroy(manager);
}

void Release::operator()(wl_buffer* buffer) const {
    wl_buffer_destroy(buffer);
}

void Release::operator()(wl_callback* callback) const {
    wl_callback_destroy(callback);
}

void Release::operator()(wl_compositor* compositor) const {
    wl_compositor_destroy(compositor);
}

void Release::operator()(wl_keyboard* keyboard) const {
    if (wl_keyboard_get_version(keyboard) >= WL_KEYBOARD_RELEASE_SINCE_VERSION) {
        wl_keyboard_release(keyboard);
    } else {
        wl_keyboard_destroy(keyboard);
    }
}

void Release::operator()(wl_output* output) const {
    if (wl_output_get_version(output) >= WL_OUTPUT_RELEASE_SINCE_VERSION) {
        wl_output_release(output);
    } else {
        wl_output_destroy(output);
    }
}

void Release::operator()(wl_pointer* pointer) const {
    if (wl_pointer_get_version(pointer) >= WL_POINTER_RELEASE_SINCE_VERSION) {
        wl_pointer_release(pointer);
    } else {
        wl_pointer_destroy(pointer);
    }
}

void Release::operator()(wl_registry* registry) const {
    wl_registry_destroy(registry);
}

void Release::operator()(wl_seat* seat) const {
    wl_seat_destroy(seat);
}

void Release::operator()(wl_shm* shm) const {
    wl_shm_destroy(shm);
}

void Release::operator()(wl_subcompositor* subcompositor) const {
    wl_subcompositor_destroy(subcompositor);
}

void Release::operator()(wl_subsurface* subsurface) const {
    wl_subsurface_destroy(subsurface);
}

void Release::operator()(wl_surface* surface) const {
    wl_surface_destroy(surface);
}

void Release::operator()(wp_viewport* viewport) const {
    wp_viewport_destroy(viewport);
}

void Release::operator()(wp_viewporter* viewporter) const {
    wp_viewporter_destroy(viewporter);
}

void Release::operator()(zwlr_layer_shell_v1* shell) const {
    if (zwlr_layer_shell_v1_get_version(shell) >= ZWLR_LAYER_SHELL_V1_DESTROY_SINCE_VERSION) {
        zwlr_layer_shell_v1_destroy(shell);
    } else {
        wl_proxy_destroy(reinterpret_cast<wl_proxy*>(shell));
    }
}

void Release::operator()(zwlr_layer_surface_v1* surface) const {
    zwlr_layer_surface_v1_destroy(surface);
}

void Release::operator()(zxdg_output_manager_v1* manager) const {
    zxdg_output_manager_v1_destroy(manager);
}

void Release::operator()(zxdg_output_v1* output) const {
    zxdg_output_v1_destroy(output);
}

} // namespace vantrel::wayland
