#pragma once

#include "platform/wayland/handles.h"

#include <QImage>
#include <QPoint>

#include <cstddef>
#include <memory>
#include <span>

namespace vantrel::wayland {

// A picture in memory that the compositor reads, 32-bit premultiplied and transparent at first.
class SharedPicture {
public:
    // Null where there is no memory for it.
    static std::unique_ptr<SharedPicture> make(wl_shm* shm, QSize size);
    ~SharedPicture();
    SharedPicture(const SharedPicture&) = delete;
    SharedPicture& operator=(const SharedPicture&) = delete;

    [[nodiscard]] QSize size() const { return size_; }
    // Whether the compositor no longer reads it. It may be written to only then.
    [[nodiscard]] bool isFree() const { return free_; }
    void write(const QImage& picture, QPoint topLeft);
    // To be attached to a surface.
    [[nodiscard]] wl_buffer* use();

private:
    SharedPicture(wl_shm* shm, QSize size, int descriptor, std::span<std::byte> memory);
    void release() { free_ = true; }

    QSize size_;
    std::span<std::byte> memory_;
    Handle<wl_buffer> buffer_;
    bool free_ = true;
};

} // namespace vantrel::wayland
