#include "platform/monitor_list.h"

#include <algorithm>
#include <utility>

namespace vantrel {

MonitorList::Token MonitorList::add(EventMask mask, EventMonitors::GlobalHandler handler,
                                    std::uint32_t number) {
    monitors_.push_back(
        {.token = ++lastToken_, .mask = mask, .number = number, .handler = std::move(handler)});
    return lastToken_;
}

void MonitorList::remove(Token token) {
    const auto monitor = std::ranges::find(monitors_, token, &Monitor::token);
    if (monitor == monitors_.end()) {
        return;
    }
    monitor->mask = 0;
    if (!sending_) {
        eraseRemoved();
    }
}

void MonitorList::eraseRemoved() {
    std::erase_if(monitors_, [](const auto& monitor) { return monitor.mask == 0; });
}

EventMask MonitorList::mask() const {
    EventMask wanted = 0;
    for (const auto& monitor : monitors_) {
        wanted |= monitor.mask;
    }
    return wanted;
}

void MonitorList::send(const Event& event, std::uint32_t number) {
    sending_ = true;
    for (const auto last = lastToken_; auto& monitor : monitors_) {
        // Once for all: the numbers go round.
        monitor.hears = monitor.hears || static_cast<std::int32_t>(number - monitor.number) >= 0;
        if ((monitor.mask & maskOf(event.type)) != 0 && monitor.token <= last && monitor.hears) {
            monitor.handler(event);
        }
    }
    sending_ = false;
    eraseRemoved();
}

} // namespace vantrel
