#pragma once

#include <QPoint>

#include <chrono>
#include <cstdint>
#include <string>

struct wl_buffer;
struct wl_display;
struct wl_output;
struct zwlr_screencopy_frame_v1;
struct zwlr_screencopy_manager_v1;
struct wl_shm;

namespace vantrel::desktop {

// Sees single pixels of a compositor's first output in the moment in which it has painted them.
class PixelWatch {
public:
    // By the path of the compositor's socket. Throws when that offers no pictures.
    explicit PixelWatch(const std::string& socket);
    ~PixelWatch();
    PixelWatch(const PixelWatch&) = delete;
    PixelWatch& operator=(const PixelWatch&) = delete;

    // 0xXXRRGGBB, at a point of an output of scale 1, as it is now.
    [[nodiscard]] std::uint32_t pixel(QPoint place);
    // Asks for the next picture in which that pixel may differ, and returns at once.
    void expect(QPoint place);
    // Whether it has been painted in another colour; false after that time.
    bool differs(std::uint32_t before, std::chrono::milliseconds limit);

private:
    bool wait(std::chrono::milliseconds limit);
    void capture(QPoint place, bool atDamage);

    wl_display* display_;
    wl_output* output_ = nullptr;
    wl_shm* shm_ = nullptr;
    zwlr_screencopy_manager_v1* manager_ = nullptr;
    zwlr_screencopy_frame_v1* frame_ = nullptr;
    wl_buffer* buffer_ = nullptr;
    std::uint32_t* memory_ = nullptr; // of the buffer, one pixel
    QPoint place_;
    bool atDamage_ = false;
    bool ready_ = false;
};

} // namespace vantrel::desktop
