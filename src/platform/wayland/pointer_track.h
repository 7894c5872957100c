#pragma once

#include <QPoint>

#include <cstdint>
#include <optional>
#include <vector>

namespace vantrel::wayland {

// Where the pointer is, from what is said of each display.
class PointerTrack {
public:
    struct Place {
        std::uint32_t display = 0;
        QPoint pixel; // of the display, from its top-left corner

        bool operator==(const Place&) const = default;
    };

    void enter(std::uint32_t display);
    void leave(std::uint32_t display);
    // Counts only while the pointer is on the display.
    void move(std::uint32_t display, QPoint pixel);
    // The display has gone, or nothing more is said of it.
    void forget(std::uint32_t display);

    // On the display that it entered last; nothing while it is on none, or out of sight.
    [[nodiscard]] std::optional<Place> place() const;

private:
    struct Entry {
        std::uint32_t display = 0;
        std::uint64_t entered = 0; // 0 while it is not there
        std::optional<QPoint> pixel;
    };

    Entry& entryOf(std::uint32_t display);

    std::vector<Entry> entries_;
    std::uint64_t lastEntered_ = 0;
};

} // namespace vantrel::wayland
