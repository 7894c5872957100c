#include "platform/x11/hot_keys.h"

#include "platform/keys/key_table.h"

#include <QGuiApplication>

#include <algorithm>
#include <utility>

#include <xcb/xinput.h>

namespace vantrel::x11 {

namespace {

constexpr int firstRetry = 500; // milliseconds, then twice as many each time
constexpr int lastRetry = 8000;

} // namespace

X11HotKeys::X11HotKeys(Connection& connection)
    : connection_(connection),
      map_(ModifierMap::read(connection)),
      events_(connection.addHandler(*this)) {
    release_.setSingleShot(true);
    QObject::connect(&release_, &QTimer::timeout, &release_, [this] {
        releaseUnregistered();
        xcb_flush(connection_.xcb());
    });
    retry_.setSingleShot(true);
    QObject::connect(&retry_, &QTimer::timeout, &retry_, [this] {
        if (retry_.interval() < lastRetry) {
            retry_.start(2 * retry_.interval());
        }
        reportLoss();
    });
}

void X11HotKeys::setLossHandler(std::function<void()> handler) {
    lossHandler_ = std::move(handler);
}

void X11HotKeys::setHandler(std::function<void(HotKeyId)> handler) {
    handler_ = std::move(handler);
}

std::optional<HotKeys::Ref> X11HotKeys::register_(std::uint32_t keyCode, std::uint32_t modifiers,
                                                  HotKeyId id) {
    const auto keycode = keycodeOf(keyCode);
    const auto state = map_.stateOf(modifiers);
    if (!keycode || !state) {
        return std::nullopt;
    }
    const KeyCombination combination{*keycode, *state};
    auto* registration = find(combination);
    if (registration == nullptr) {
        registration = &registrations_.emplace_back(Registration{.combination = combination});
    }
    if (registration->ref != 0) {
        return std::nullopt;
    }
    if (!registration->grab) {
        registration->grab = KeyGrab::take(connection_, combination, map_.locks);
    }
    if (!registration->grab) {
        return std::nullopt;
    }
    registration->modifiers = modifiers;
    registration->ref = ++lastRef_;
    registration->id = id;
    return registration->ref;
}

void X11HotKeys::unregister(Ref ref) {
    const auto found = std::ranges::find(registrations_, ref, &Registration::ref);
    if (ref == 0 || found == registrations_.end()) {
        return;
    }
    found->ref = 0;
    if (!release_.isActive()) {
        release_.start();
    }
}

void X11HotKeys::handleEvent(const xcb_generic_event_t& event) {
    if (eventNumber(event) == XCB_MAPPING_NOTIFY) {
        const auto& mapping = reinterpret_cast<const xcb_mapping_notify_event_t&>(event);
        mappingChanged_ = mappingChanged_ || mapping.request != XCB_MAPPING_POINTER;
    } else if (eventNumber(event) == XCB_GE_GENERIC) {
        const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
        if (generic.extension == connection_.majorOpcode(xcb_input_id) &&
            generic.event_type == XCB_INPUT_KEY_PRESS) {
            notePress(event);
        }
    }
}

void X11HotKeys::notePress(const xcb_generic_event_t& event) {
    const auto& press = reinterpret_cast<const xcb_input_key_press_event_t&>(event);
    // The whole keyboard is ours until the key comes up, so that the window in front sees nothing
    // of it. One of this program would take that for the loss of its focus.
    if (QGuiApplication::focusWindow() != nullptr) {
        xcb_input_xi_ungrab_device(connection_.xcb(), XCB_CURRENT_TIME, press.deviceid);
        xcb_flush(connection_.xcb());
    }
    if ((press.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) == 0) {
        pressed_.push_back(
            {static_cast<xcb_keycode_t>(press.detail), press.mods.effective & ~map_.locks});
    }
}

void X11HotKeys::eventsDrained() {
    deliverPresses();
    releaseUnregistered();
    if (std::exchange(mappingChanged_, false)) {
        followMapping();
    }
}

void X11HotKeys::deliverPresses() {
    for (const auto& combination : std::exchange(pressed_, {})) {
        const auto* registration = find(combination);
        if (registration != nullptr && registration->ref != 0 && handler_) {
            // A copy, since the handler may set another one.
            const auto handler = handler_;
            handler(registration->id);
        }
    }
}

void X11HotKeys::releaseUnregistered() {
    release_.stop();
    std::erase_if(registrations_, [](const auto& registration) { return registration.ref == 0; });
}

// Keys stay where they are, but Alt, Super and the locks may have become other bits.
void X11HotKeys::followMapping() {
    const auto map = ModifierMap::read(connection_);
    if (map == map_) {
        return;
    }
    map_ = map;
    for (auto& registration : registrations_) {
        registration.grab.reset();
        registration.combination.state = *map_.stateOf(registration.modifiers);
    }
    bool lost = false;
    for (auto& registration : registrations_) {
        registration.grab = KeyGrab::take(connection_, registration.combination, map_.locks);
        lost = lost || !registration.grab;
    }
    // Whoever has it may be about to follow the mapping as well.
    if (lost) {
        retry_.start(firstRetry);
        reportLoss();
    }
}

void X11HotKeys::reportLoss() {
    if (const auto handler = lossHandler_) {
        handler();
    }
}

X11HotKeys::Registration* X11HotKeys::find(KeyCombination combination) {
    const auto found = std::ranges::find(registrations_, combination, &Registration::combination);
    return found == registrations_.end() ? nullptr : &*found;
}

} // namespace vantrel::x11
