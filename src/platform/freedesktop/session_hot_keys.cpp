#include "platform/freedesktop/session_hot_keys.h"

#include <algorithm>
#include <utility>

namespace vantrel {

SessionHotKeys::SessionHotKeys(KeyGrabber& grabber, HotKeys& others, Keycode keycodeOf)
    : grabber_(grabber),
      others_(others),
      keycodeOf_(std::move(keycodeOf)),
      inSession_(grabber.takesKeys()),
      changes_(grabber.onKeysChange([this] { follow(); })) {
    grab_.setSingleShot(true);
    QObject::connect(&grab_, &QTimer::timeout, &grab_, [this] { grab(); });
    grabber_.onRefused = [this](const auto& numbers) { takeRefusal(numbers); };
    grabber_.onPressed = [this](std::uint32_t number) { take(number); };
    others_.setLossHandler([this] { reportLoss(); });
}

void SessionHotKeys::setHandler(std::function<void(HotKeyId)> handler) {
    handler_ = std::move(handler);
    others_.setHandler(handler_);
}

void SessionHotKeys::setLossHandler(std::function<void()> handler) {
    lossHandler_ = std::move(handler);
}

std::optional<HotKeys::Ref> SessionHotKeys::register_(std::uint32_t keyCode,
                                                      std::uint32_t modifiers, HotKeyId id) {
    Registration registration{.ref = lastRef_ + 1, .id = id};
    if (inSession_) {
        const auto keycode = keycodeOf_(keyCode);
        if (!keycode) {
            return std::nullopt;
        }
        registration.keys = {*keycode, modifiers};
        grab_.start();
        if (std::ranges::find(refused_, *registration.keys) != refused_.end()) {
            wanted_.push_back(*registration.keys);
            return std::nullopt;
        }
    } else {
        registration.others = others_.register_(keyCode, modifiers, id);
        if (!registration.others) {
            return std::nullopt;
        }
    }
    registrations_.push_back(registration);
    return ++lastRef_;
}

void SessionHotKeys::unregister(Ref ref) {
    const auto found = std::ranges::find(registrations_, ref, &Registration::ref);
    if (found == registrations_.end()) {
        return;
    }
    if (found->others) {
        others_.unregister(*found->others);
    } else {
        grab_.start();
    }
    registrations_.erase(found);
}

void SessionHotKeys::leaveKeys(bool left) {
    grabber_.leaveKeys(left);
    others_.leaveKeys(left);
}

bool SessionHotKeys::canLeaveKeys() const {
    return grabber_.canLeaveKeys() || others_.canLeaveKeys();
}

// In one go, after all that were registered in this one.
void SessionHotKeys::grab() {
    refused_ = std::exchange(wanted_, {});
    std::vector<KeyGrab> grabs;
    for (const auto& registration : registrations_) {
        if (registration.keys) {
            grabs.push_back({registration.id.id, *registration.keys});
        }
    }
    grabber_.grab(grabs);
}

void SessionHotKeys::take(std::uint32_t number) {
    const auto pressed = std::ranges::find_if(registrations_, [=](const auto& registration) {
        return registration.id.id == number && registration.keys;
    });
    if (pressed != registrations_.end() && handler_) {
        // A copy, since the handler may set another one.
        const auto handler = handler_;
        handler(pressed->id);
    }
}

void SessionHotKeys::takeRefusal(const std::vector<std::uint32_t>& numbers) {
    for (const auto& registration : registrations_) {
        if (registration.keys && std::ranges::count(numbers, registration.id.id) > 0) {
            refused_.push_back(*registration.keys);
        }
    }
    reportLoss();
}

void SessionHotKeys::follow() {
    const bool inSession = grabber_.takesKeys();
    const bool wasRefused = !refused_.empty();
    refused_.clear();
    wanted_.clear();
    if (std::exchange(inSession_, inSession) != inSession || wasRefused) {
        reportLoss();
    }
}

void SessionHotKeys::reportLoss() const {
    if (const auto handler = lossHandler_) {
        handler();
    }
}

} // namespace vantrel
