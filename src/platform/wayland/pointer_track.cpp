#include "platform/wayland/pointer_track.h"

#include <algorithm>

namespace vantrel::wayland {

void PointerTrack::enter(std::uint32_t display) {
    entryOf(display).entered = ++lastEntered_;
}

void PointerTrack::leave(std::uint32_t display) {
    entryOf(display).entered = 0;
}

void PointerTrack::move(std::uint32_t display, QPoint pixel) {
    entryOf(display).pixel = pixel;
}

void PointerTrack::forget(std::uint32_t display) {
    std::erase_if(entries_, [display](const Entry& entry) { return entry.display == display; });
}

std::optional<PointerTrack::Place> PointerTrack::place() const {
    const auto last = std::ranges::max_element(entries_, {}, &Entry::entered);
    if (last == entries_.end() || last->entered == 0 || !last->pixel) {
        return std::nullopt;
    }
    return Place{last->display, *last->pixel};
}

PointerTrack::Entry& PointerTrack::entryOf(std::uint32_t display) {
    const auto found = std::ranges::find(entries_, display, &Entry::display);
    return found != entries_.end() ? *found : entries_.emplace_back(Entry{.display = display});
}

} // namespace vantrel::wayland
