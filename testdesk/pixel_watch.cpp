#include "testdesk/pixel_watch.h"

#include <cstddef>
#include <stdexcept>
#include <string_view>
#include <type_traits>

#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>
#include <wayland-screencopy.h>

namespace vantrel::desktop {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::int32_t bytes = 4;

} // namespace

PixelWatch::PixelWatch(const std::string& socket) : display_(wl_display_connect(socket.c_str())) {
    if (display_ == nullptr) {
        throw std::runtime_error("no connection to the compositor");
    }
    static constexpr wl_registry_listener listener{
        .global =
            [](void* data, wl_registry* registry, std::uint32_t name, const char* interface,
               std::uint32_t /*version*/) {
                auto& self = *static_cast<PixelWatch*>(data);
                const auto take = [&](auto*& global, const wl_interface& wanted,
                                      std::uint32_t version) {
                    if (global == nullptr && std::string_view(interface) == wanted.name) {
                        global = static_cast<std::remove_reference_t<decltype(global)>>(
                            wl_registry_bind(registry, name, &wanted, version));
                    }
                };
                take(self.output_, wl_output_interface, 1);
                take(self.shm_, wl_shm_interface, 1);
                take(self.manager_, zwlr_screencopy_manager_v1_interface, 2);
            },
        .global_remove = [](void*, wl_registry*, std::uint32_t) {},
    };
    auto* registry = wl_display_get_registry(display_);
    wl_registry_add_listener(registry, &listener, this);
    wl_display_roundtrip(display_);
    wl_registry_destroy(registry);
    const int file = memfd_create("pixel", MFD_CLOEXEC);
    auto* memory = ftruncate(file, bytes) == 0
                       ? mmap(nullptr, bytes, PROT_READ, MAP_SHARED, file, 0)
                       : MAP_FAILED;
    if (manager_ == nullptr || memory == MAP_FAILED) {
        throw std::runtime_error("no pictures of the compositor");
    }
    memory_ = static_cast<std::uint32_t*>(memory);
    auto* pool = wl_shm_create_pool(shm_, file, bytes);
    buffer_ = wl_shm_pool_create_buffer(pool, 0, 1, 1, bytes, WL_SHM_FORMAT_XRGB8888);
    wl_shm_pool_destroy(pool);
    close(file);
}

PixelWatch::~PixelWatch() {
    munmap(memory_, bytes);
    wl_display_disconnect(display_);
}

std::uint32_t PixelWatch::pixel(QPoint place) {
    capture(place, false);
    if (!wait(std::chrono::seconds(5))) {
        throw std::runtime_error("no picture of the compositor");
    }
    return *memory_ & 0xFFFFFFU;
}

void PixelWatch::expect(QPoint place) {
    capture(place, true);
}

bool PixelWatch::differs(std::uint32_t before, std::chrono::milliseconds limit) {
    const auto deadline = Clock::now() + limit;
    while (Clock::now() < deadline) {
        if (!wait(std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()))) {
            return false;
        }
        if ((*memory_ & 0xFFFFFFU) != before) {
            return true;
        }
        expect(place_);
    }
    return false;
}

void PixelWatch::capture(QPoint place, bool atDamage) {
    static constexpr zwlr_screencopy_frame_v1_listener listener{
        .buffer =
            [](void* data, zwlr_screencopy_frame_v1* frame, auto...) {
                auto& self = *static_cast<PixelWatch*>(data);
                self.atDamage_ ? zwlr_screencopy_frame_v1_copy_with_damage(frame, self.buffer_)
                               : zwlr_screencopy_frame_v1_copy(frame, self.buffer_);
            },
        .flags = [](auto...) {},
        .ready = [](void* data, auto...) { static_cast<PixelWatch*>(data)->ready_ = true; },
        .failed = [](auto...) { throw std::runtime_error("the compositor copies nothing"); },
        .damage = [](auto...) {},
    };
    if (frame_ != nullptr) {
        zwlr_screencopy_frame_v1_destroy(frame_);
    }
    place_ = place;
    atDamage_ = atDamage;
    ready_ = false;
    frame_ = zwlr_screencopy_manager_v1_capture_output_region(manager_, 0, output_, place.x(),
                                                              place.y(), 1, 1);
    zwlr_screencopy_frame_v1_add_listener(frame_, &listener, this);
    wl_display_roundtrip(display_);
    wl_display_flush(display_);
}

bool PixelWatch::wait(std::chrono::milliseconds limit) {
    const auto deadline = Clock::now() + limit;
    while (!ready_) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        pollfd readable{wl_display_get_fd(display_), POLLIN, 0};
        wl_display_flush(display_);
        if (left.count() <= 0 || poll(&readable, 1, static_cast<int>(left.count())) <= 0) {
            return false;
        }
        if (wl_display_dispatch(display_) < 0) {
            throw std::runtime_error("the compositor is gone");
        }
    }
    return true;
}

} // namespace vantrel::desktop
