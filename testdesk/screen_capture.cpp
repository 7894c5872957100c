#include "testdesk/screen_capture.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace vantrel::desktop {

std::uint32_t Picture::at(PixelPoint place) const {
    const std::ptrdiff_t column = place.x - area.x;
    const std::ptrdiff_t row = place.y - area.y;
    if (column < 0 || row < 0 || column >= area.width || row >= area.height) {
        throw std::out_of_range("outside the picture");
    }
    return pixels[static_cast<std::size_t>(row * area.width + column)];
}

Picture captureScreen(const XConnection& connection, const PixelRect& area) {
    const auto cookie = xcb_get_image(
        connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, connection.root(),
        static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
        static_cast<std::uint16_t>(area.width), static_cast<std::uint16_t>(area.height), ~0U);
    const auto reply = ownReply(xcb_get_image_reply(connection.get(), cookie, nullptr));
    const std::size_t count =
        static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height);
    if (!reply || static_cast<std::size_t>(xcb_get_image_data_length(reply.get())) < 4 * count) {
        throw std::runtime_error("cannot capture the screen");
    }
    Picture picture{.area = area, .pixels = std::vector<std::uint32_t>(count)};
    std::memcpy(picture.pixels.data(), xcb_get_image_data(reply.get()), 4 * count);
    for (std::uint32_t& pixel : picture.pixels) {
        pixel &= 0xFFFFFF;
    }
    return picture;
}

std::uint32_t pixelAt(const XConnection& connection, PixelPoint place) {
    return captureScreen(connection, {place.x, place.y, 1, 1}).pixels.front();
}

int channelDistance(std::uint32_t one, std::uint32_t other) {
    int distance = 0;
    for (const int shift : {0, 8, 16}) {
        const int a = static_cast<int>(one >> shift & 0xFF);
        const int b = static_cast<int>(other >> shift & 0xFF);
        distance = std::max(distance, std::abs(a - b));
    }
    return distance;
}

} // namespace vantrel::desktop
