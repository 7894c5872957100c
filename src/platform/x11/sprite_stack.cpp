#include "platform/x11/sprite_stack.h"

#include <algorithm>

namespace vantrel::x11 {

SpriteStack::SpriteStack(Connection& connection, const Clock& clock)
    : connection_(connection), clock_(clock), events_(connection.addHandler(*this)) {
    connection_.selectRootEvents(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
}

void SpriteStack::setKind(SpriteKind kind) {
    entries_.clear();
    resources_.emplace(connection_, kind);
}

void SpriteStack::prepare(std::size_t count) {
    auto waiting = static_cast<std::size_t>(std::ranges::count(entries_, false, &Entry::used));
    for (; waiting < count; ++waiting) {
        entries_.push_back({std::make_unique<SpriteWindow>(*resources_)});
    }
}

// As a rule the server has answered long ago.
void SpriteStack::removeThoseThatTakeClicks() {
    std::erase_if(entries_, [](const Entry& entry) {
        return !entry.used && !entry.window->letsClicksThrough();
    });
}

SpriteWindow* SpriteStack::acquire() {
    prepare(1);
    removeThoseThatTakeClicks();
    const auto free = std::ranges::find(entries_, false, &Entry::used);
    if (free == entries_.end()) {
        return nullptr;
    }
    // Those that wait may be in front of a window that the others have yielded to.
    const auto highest = std::ranges::find(entries_.rbegin(), entries_.rend(), true, &Entry::used);
    if (highest != entries_.rend()) {
        free->window->stackAbove(*highest->window);
    }
    free->used = true;
    if (shown_) {
        free->window->map();
    }
    std::rotate(free, free + 1, entries_.end());
    return entries_.back().window.get();
}

void SpriteStack::mapAll() {
    removeThoseThatTakeClicks();
    for (const auto& entry : entries_) {
        entry.window->map();
        entry.window->commit();
    }
}

void SpriteStack::release(SpriteWindow& window) {
    const auto entry =
        std::ranges::find(entries_, &window, [](const Entry& e) { return e.window.get(); });
    if (entry != entries_.end()) {
        window.park();
        window.commit();
        entry->used = false;
    }
}

void SpriteStack::setShown(bool shown) {
    shown_ = shown;
    for (auto& entry : entries_) {
        if (!shown) {
            entry.window->unmap();
        }
    }
}

void SpriteStack::raise() {
    if (above_.empty()) {
        return;
    }
    for (const auto& entry : entries_) {
        entry.window->raise();
    }
    above_.clear();
}

bool SpriteStack::isOurs(xcb_window_t window) const {
    return std::ranges::any_of(
        entries_, [window](const Entry& entry) { return entry.window->id() == window; });
}

void SpriteStack::cameAbove(xcb_window_t window) {
    if (!covered_ && shown_) {
        covered_ = policy_.shouldRaise(window, clock_.uptime());
    }
}

void SpriteStack::handleEvent(const xcb_generic_event_t& event) {
    switch (eventNumber(event)) {
    case XCB_MAP_NOTIFY: {
        const auto window = reinterpret_cast<const xcb_map_notify_event_t&>(event).window;
        if (!isOurs(window)) {
            cameAbove(window);
        }
        break;
    }
    case XCB_CREATE_NOTIFY:
        noteOrder(reinterpret_cast<const xcb_create_notify_event_t&>(event).window, true);
        break;
    case XCB_REPARENT_NOTIFY: {
        const auto& reparent = reinterpret_cast<const xcb_reparent_notify_event_t&>(event);
        noteOrder(reparent.window, reparent.parent == connection_.root());
        break;
    }
    case XCB_CONFIGURE_NOTIFY: {
        const auto& configure = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        const auto below = configure.above_sibling;
        if (noteOrder(configure.window, isOurs(below) || above_.contains(below))) {
            cameAbove(configure.window);
        }
        break;
    }
    case XCB_UNMAP_NOTIFY:
        policy_.forget(reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window);
        break;
    case XCB_DESTROY_NOTIFY: {
        const auto window = reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
        above_.erase(window);
        policy_.forget(window);
        break;
    }
    default:
        break;
    }
}

bool SpriteStack::noteOrder(xcb_window_t window, bool above) {
    if (isOurs(window)) {
        return false;
    }
    if (above) {
        above_.insert(window);
    } else {
        above_.erase(window);
    }
    return above;
}

void SpriteStack::eventsDrained() {
    if (std::exchange(covered_, false)) {
        raise();
    }
}

} // namespace vantrel::x11
