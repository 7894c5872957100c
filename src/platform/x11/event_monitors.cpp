#include "platform/x11/event_monitors.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

#include <xcb/xinput.h>

namespace vantrel::x11 {

namespace {

constexpr EventMask motionMask =
    maskOf(EventType::mouseMoved) | maskOf(EventType::leftMouseDragged) |
    maskOf(EventType::rightMouseDragged) | maskOf(EventType::otherMouseDragged);
constexpr EventMask pressMask = maskOf(EventType::leftMouseDown) |
                                maskOf(EventType::rightMouseDown) |
                                maskOf(EventType::otherMouseDown);

constexpr std::uint32_t leftButton = 1;
constexpr std::uint32_t rightButton = 3;

// A wheel turns its steps into presses, many a second. Nobody clicks with them, so they are left
// out before anything is asked about them.
bool isWheel(std::uint32_t button) {
    return button >= 4 && button <= 7;
}

} // namespace

ButtonMapping::~ButtonMapping() {
    for (const auto& device : devices_) {
        if (device.sequence != 0) {
            xcb_discard_reply(connection_.xcb(), device.sequence);
        }
    }
}

void ButtonMapping::request(const RawPress& press) {
    requestDevice(press.source);
    requestDevice(press.device);
}

void ButtonMapping::requestDevice(std::uint16_t id) {
    if (id != 0 && std::ranges::find(devices_, id, &Device::id) == devices_.end()) {
        // Devices have small numbers; the request keeps from its beginnings a byte for them.
        const auto cookie =
            xcb_input_get_device_button_mapping(connection_.xcb(), static_cast<std::uint8_t>(id));
        devices_.push_back({.id = id, .sequence = cookie.sequence});
    }
}

std::uint32_t ButtonMapping::buttonOf(const RawPress& press) {
    return mapped(press.device, mapped(press.source, press.button));
}

std::uint32_t ButtonMapping::mapped(std::uint16_t id, std::uint32_t button) {
    const auto device = std::ranges::find(devices_, id, &Device::id);
    if (device == devices_.end()) {
        return button;
    }
    readAnswer(*device);
    return button >= 1 && button <= device->buttons.size() ? device->buttons[button - 1] : button;
}

void ButtonMapping::readAnswer(Device& device) const {
    const auto sequence = std::exchange(device.sequence, 0);
    if (sequence == 0) {
        return;
    }
    const Owned<xcb_input_get_device_button_mapping_reply_t> reply(
        xcb_input_get_device_button_mapping_reply(connection_.xcb(), {sequence}, nullptr));
    if (reply) {
        const auto* buttons = xcb_input_get_device_button_mapping_map(reply.get());
        device.buttons.assign(buttons, buttons + reply->map_size);
    }
}

bool Fingers::down(std::uint16_t device, std::uint32_t touch) {
    fingers_.push_back({device, touch});
    return fingers_.size() == 1;
}

void Fingers::up(std::uint32_t touch) {
    std::erase_if(fingers_, [touch](const Finger& finger) { return finger.touch == touch; });
}

void Fingers::deviceGone(std::uint16_t device) {
    std::erase_if(fingers_, [device](const Finger& finger) { return finger.device == device; });
}

X11EventMonitors::X11EventMonitors(Connection& connection, X11Pointer& pointer)
    : connection_(connection), pointer_(pointer), events_(connection.addHandler(*this)) {}

std::optional<EventMonitors::Token> X11EventMonitors::addGlobal(EventMask mask,
                                                                GlobalHandler handler) {
    newest_ = xcb_no_operation(connection_.xcb()).sequence;
    const auto token = monitors_.add(mask, std::move(handler), newest_);
    select();
    return token;
}

std::optional<EventMonitors::Token> X11EventMonitors::addLocal(EventMask /*mask*/,
                                                               LocalHandler /*handler*/) {
    return monitors_.addDeaf();
}

void X11EventMonitors::remove(Token token) {
    monitors_.remove(token);
    select();
}

void X11EventMonitors::select() {
    const auto wanted = monitors_.mask();
    std::uint32_t events = 0;
    std::uint32_t hierarchy = 0;
    if ((wanted & motionMask) != 0) {
        events |= XCB_INPUT_XI_EVENT_MASK_RAW_MOTION | XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_UPDATE;
    }
    if ((wanted & pressMask) != 0) {
        events |= XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS |
                  XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_BEGIN | XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_END;
        hierarchy = XCB_INPUT_XI_EVENT_MASK_HIERARCHY;
    }
    if (std::exchange(selected_, events) == events) {
        return;
    }
    // A finger may be lifted while nobody looks.
    fingers_.clear();
    struct Selection {
        xcb_input_event_mask_t head;
        std::uint32_t events;
    };
    // Of the pointers only: what moves them is seen through them.
    const std::array<Selection, 2> selections{{
        {{XCB_INPUT_DEVICE_ALL_MASTER, 1}, events},
        {{XCB_INPUT_DEVICE_ALL, 1}, hierarchy},
    }};
    xcb_input_xi_select_events(connection_.xcb(), connection_.root(), selections.size(),
                               &selections.front().head);
}

void X11EventMonitors::handleEvent(const xcb_generic_event_t& event) {
    if (eventNumber(event) != XCB_GE_GENERIC) {
        return;
    }
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if (generic.extension != connection_.majorOpcode(xcb_input_id)) {
        return;
    }
    switch (generic.event_type) {
    case XCB_INPUT_RAW_MOTION:
    case XCB_INPUT_RAW_TOUCH_UPDATE:
        // What came together with an answer needs no question of its own.
        if (!moved_ && !pointer_.answeredSince(event)) {
            moved_ = true;
            noteDeparture();
            pointer_.ask();
        }
        break;
    case XCB_INPUT_RAW_BUTTON_PRESS:
        notePress(event);
        break;
    case XCB_INPUT_RAW_TOUCH_BEGIN:
    case XCB_INPUT_RAW_TOUCH_END:
        noteFinger(event);
        break;
    case XCB_INPUT_HIERARCHY:
        noteDevices(event);
        break;
    default:
        break;
    }
}

void X11EventMonitors::notePress(const xcb_generic_event_t& event) {
    const auto& press = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event);
    if (!isWheel(press.detail)) {
        presses_.push_back({press.deviceid, press.sourceid, press.detail, event.full_sequence});
    }
}

// What was pressed before the pointer went on is where it was until then.
void X11EventMonitors::noteDeparture() {
    if (!presses_.empty()) {
        left_ = pointer_.latestAnswer();
        pressedThere_ = presses_.size();
    }
}

// The server sends no raw press for a finger.
void X11EventMonitors::noteFinger(const xcb_generic_event_t& event) {
    const auto& touch = reinterpret_cast<const xcb_input_raw_touch_begin_event_t&>(event);
    if (touch.event_type == XCB_INPUT_RAW_TOUCH_END) {
        fingers_.up(touch.detail);
    } else if (fingers_.down(touch.sourceid, touch.detail)) {
        presses_.push_back({.button = leftButton, .sequence = event.full_sequence});
    }
}

void X11EventMonitors::noteDevices(const xcb_generic_event_t& event) {
    constexpr std::uint32_t gone = XCB_INPUT_HIERARCHY_MASK_SLAVE_REMOVED |
                                   XCB_INPUT_HIERARCHY_MASK_SLAVE_DETACHED |
                                   XCB_INPUT_HIERARCHY_MASK_DEVICE_DISABLED;
    const auto& change = reinterpret_cast<const xcb_input_hierarchy_event_t&>(event);
    const std::span devices(xcb_input_hierarchy_infos(&change), change.num_infos);
    for (const auto& device : devices) {
        if ((device.flags & gone) != 0) {
            fingers_.deviceGone(device.deviceid);
        }
    }
}

void X11EventMonitors::eventsDrained() {
    deliverPresses();
    if (std::exchange(moved_, false)) {
        const auto place = pointer_.lastLocation();
        monitors_.send({.type = EventType::mouseMoved, .locationInWindow = {place.x, place.y}},
                       newest_);
    }
}

void X11EventMonitors::deliverPresses() {
    if (presses_.empty()) {
        return;
    }
    const auto presses = std::exchange(presses_, {});
    const auto there = std::exchange(pressedThere_, 0);
    ButtonMapping mapping(connection_);
    for (const auto& press : presses) {
        mapping.request(press);
    }
    const auto now = pointer_.location().value_or(pointer_.lastLocation());
    for (std::size_t i = 0; i < presses.size(); ++i) {
        const auto& press = presses[i];
        const auto place = i < there ? left_ : now;
        const auto button = mapping.buttonOf(press);
        const auto type = button == leftButton    ? EventType::leftMouseDown
                          : button == rightButton ? EventType::rightMouseDown
                                                  : EventType::otherMouseDown;
        monitors_.send({.type = type, .locationInWindow = {place.x, place.y}}, press.sequence);
    }
}

} // namespace vantrel::x11
