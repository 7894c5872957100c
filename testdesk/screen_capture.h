#pragma once

#include "testdesk/x_connection.h"

#include <cstdint>
#include <vector>

namespace vantrel::desktop {

// What a screen shows: pixels of 0x00RRGGBB, row by row from the top.
struct Picture {
    PixelRect area;
    std::vector<std::uint32_t> pixels;

    // By its place on the screen, which must lie in the area.
    [[nodiscard]] std::uint32_t at(PixelPoint place) const;
    bool operator==(const Picture&) const = default;
};

// Everything in that part of the screen, a compositing manager's painting included. Throws when it
// reaches beyond the screen.
[[nodiscard]] Picture captureScreen(const XConnection& connection, const PixelRect& area);
[[nodiscard]] std::uint32_t pixelAt(const XConnection& connection, PixelPoint place);

// The largest difference between the channels of two pixels, 0 to 255.
[[nodiscard]] int channelDistance(std::uint32_t one, std::uint32_t other);

} // namespace vantrel::desktop
