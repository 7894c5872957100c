#include "platform/x11/event_monitors.h"

#include <algorithm>

#include <xcb/xinput.h>

namespace vantrel::x11 {

namespace {

constexpr EventMask motionMask =
    maskOf(EventType::mouseMoved) | maskOf(EventType::leftMouseDragged) |
    maskOf(EventType::rightMouseDragged) | maskOf(EventType::otherMouseDragged);

} // namespace

X11EventMonitors::X11EventMonitors(Connection& connection, const X11Pointer& pointer)
    : connection_(connection), pointer_(pointer), events_(connection.addHandler(*this)) {}

std::optional<EventMonitors::Token> X11EventMonitors::addGlobal(EventMask mask,
                                                                GlobalHandler handler) {
    global_.push_back({++lastToken_, mask, std::move(handler)});
    select();
    return lastToken_;
}

std::optional<EventMonitors::Token> X11EventMonitors::addLocal(EventMask mask,
                                                               LocalHandler handler) {
    local_.push_back({++lastToken_, mask, std::move(handler)});
    select();
    return lastToken_;
}

void X11EventMonitors::remove(Token token) {
    const auto isToken = [token](const auto& monitor) { return monitor.token == token; };
    if (sending_) {
        // The lists are being walked along.
        for (auto& monitor : global_) {
            monitor.mask = isToken(monitor) ? 0 : monitor.mask;
        }
        for (auto& monitor : local_) {
            monitor.mask = isToken(monitor) ? 0 : monitor.mask;
        }
    } else {
        std::erase_if(global_, isToken);
        std::erase_if(local_, isToken);
    }
    select();
}

void X11EventMonitors::select() {
    EventMask wanted = 0;
    for (const auto& monitor : global_) {
        wanted |= monitor.mask;
    }
    for (const auto& monitor : local_) {
        wanted |= monitor.mask;
    }
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t events;
    } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, 0};
    if ((wanted & motionMask) != 0) {
        selection.events |=
            XCB_INPUT_XI_EVENT_MASK_RAW_MOTION | XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_UPDATE;
    }
    xcb_input_xi_select_events(connection_.xcb(), connection_.root(), 1, &selection.head);
}

void X11EventMonitors::handleEvent(const xcb_generic_event_t& event) {
    if (eventNumber(event) != XCB_GE_GENERIC) {
        return;
    }
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if (generic.extension == connection_.majorOpcode(xcb_input_id) &&
        (generic.event_type == XCB_INPUT_RAW_MOTION ||
         generic.event_type == XCB_INPUT_RAW_TOUCH_UPDATE)) {
        moved_ = true;
    }
}

void X11EventMonitors::eventsDrained() {
    if (std::exchange(moved_, false)) {
        const auto place = pointer_.lastLocation();
        send({.type = EventType::mouseMoved, .locationInWindow = {place.x, place.y}});
    }
}

void X11EventMonitors::send(const Event& event) {
    sending_ = true;
    for (std::size_t i = 0; i < global_.size(); ++i) {
        if ((global_[i].mask & maskOf(event.type)) != 0) {
            const auto handler = global_[i].handler;
            handler(event);
        }
    }
    sending_ = false;
    std::erase_if(global_, [](const auto& monitor) { return monitor.mask == 0; });
    std::erase_if(local_, [](const auto& monitor) { return monitor.mask == 0; });
}

} // namespace vantrel::x11
