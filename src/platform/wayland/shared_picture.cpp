#include "platform/wayland/shared_picture.h"

#include "platform/wayland/listener.h"

#include <algorithm>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>

namespace vantrel::wayland {

namespace {

constexpr std::size_t pixelBytes = 4;

std::size_t bytesOf(QSize size) {
    return static_cast<std::size_t>(size.width()) * static_cast<std::size_t>(size.height()) *
           pixelBytes;
}

} // namespace

std::unique_ptr<SharedPicture> SharedPicture::make(wl_shm* shm, QSize size) {
    const auto bytes = bytesOf(size);
    const int descriptor = memfd_create("vantrel", MFD_CLOEXEC);
    std::unique_ptr<SharedPicture> picture;
    // The compositor would be killed by memory that is not there when it reads.
    if (descriptor >= 0 && posix_fallocate(descriptor, 0, static_cast<off_t>(bytes)) == 0) {
        auto* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
        if (memory != MAP_FAILED) {
            picture.reset(
                new SharedPicture(shm, size, descriptor, {static_cast<std::byte*>(memory), bytes}));
        }
    }
    if (descriptor >= 0) {
        close(descriptor);
    }
    return picture;
}

SharedPicture::SharedPicture(wl_shm* shm, QSize size, int descriptor, std::span<std::byte> memory)
    : size_(size), memory_(memory) {
    auto* pool = wl_shm_create_pool(shm, descriptor, static_cast<std::int32_t>(memory.size()));
    buffer_.reset(wl_shm_pool_create_buffer(pool, 0, size.width(), size.height(),
                                            size.width() * static_cast<int>(pixelBytes),
                                            WL_SHM_FORMAT_ARGB8888));
    wl_shm_pool_destroy(pool);
    static constexpr wl_buffer_listener listener{
        .release = relay<&SharedPicture::release, wl_buffer>,
    };
    wl_buffer_add_listener(buffer_.get(), &listener, this);
}

SharedPicture::~SharedPicture() {
    munmap(memory_.data(), memory_.size());
}

void SharedPicture::write(const QImage& picture, QPoint topLeft) {
    const auto rowBytes = static_cast<std::size_t>(picture.width()) * pixelBytes;
    for (int y = 0; y < picture.height(); ++y) {
        const auto* row = reinterpret_cast<const std::byte*>(picture.constScanLine(y));
        const auto pixel =
            static_cast<std::size_t>(topLeft.y() + y) * static_cast<std::size_t>(size_.width()) +
            static_cast<std::size_t>(topLeft.x());
        std::copy_n(row, rowBytes, memory_.subspan(pixel * pixelBytes).begin());
    }
}

wl_buffer* SharedPicture::use() {
    free_ = false;
    return buffer_.get();
}

} // namespace vantrel::wayland
