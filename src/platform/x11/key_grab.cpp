#include "platform/x11/key_grab.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <xcb/xinput.h>

namespace vantrel::x11 {

namespace {

// The state with every set of locks.
std::vector<std::uint32_t> withLocks(std::uint32_t state, std::uint32_t locks) {
    std::vector<std::uint32_t> states;
    for (auto subset = locks;; subset = (subset - 1) & locks) {
        states.push_back(state | subset);
        if (subset == 0) {
            return states;
        }
    }
}

} // namespace

std::optional<KeyGrab> KeyGrab::take(const Connection& connection, KeyCombination combination,
                                     std::uint32_t locks) {
    // Whatever part of it was granted ends with the object.
    KeyGrab grab(connection, combination, locks);
    return grab.grab() ? std::optional(std::move(grab)) : std::nullopt;
}

KeyGrab::KeyGrab(KeyGrab&& other) noexcept
    : connection_(std::exchange(other.connection_, nullptr)),
      combination_(other.combination_),
      locks_(other.locks_) {}

KeyGrab& KeyGrab::operator=(KeyGrab&& other) noexcept {
    if (this != &other) {
        release();
        connection_ = std::exchange(other.connection_, nullptr);
        combination_ = other.combination_;
        locks_ = other.locks_;
    }
    return *this;
}

KeyGrab::~KeyGrab() {
    release();
}

// A server keeps two books, one for core grabs and one for XInput's, and a combination that is
// taken in one is free in the other. So it is taken in both. A press goes to the grab that was made
// last: XInput's, whose events tell of repetitions.
bool KeyGrab::grab() const {
    auto* xcb = connection_->xcb();
    const auto root = connection_->root();
    const auto states = withLocks(combination_.state, locks_);
    std::vector<xcb_void_cookie_t> core;
    core.reserve(states.size());
    for (const auto state : states) {
        core.push_back(xcb_grab_key_checked(xcb, 0, root, static_cast<std::uint16_t>(state),
                                            combination_.keycode, XCB_GRAB_MODE_ASYNC,
                                            XCB_GRAB_MODE_ASYNC));
    }
    const std::uint32_t presses = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
    const auto input = xcb_input_xi_passive_grab_device(
        xcb, XCB_CURRENT_TIME, root, XCB_NONE, combination_.keycode, XCB_INPUT_DEVICE_ALL_MASTER,
        static_cast<std::uint16_t>(states.size()), 1, XCB_INPUT_GRAB_TYPE_KEYCODE,
        XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER,
        &presses, states.data());
    const Owned<xcb_input_xi_passive_grab_device_reply_t> refusals(
        xcb_input_xi_passive_grab_device_reply(xcb, input, nullptr));
    bool granted = refusals && refusals->num_modifiers == 0;
    for (const auto cookie : core) {
        const Owned<xcb_generic_error_t> refusal(xcb_request_check(xcb, cookie));
        granted = granted && !refusal;
    }
    return granted;
}

void KeyGrab::release() {
    if (connection_ == nullptr) {
        return;
    }
    auto* xcb = connection_->xcb();
    const auto root = connection_->root();
    const auto states = withLocks(combination_.state, locks_);
    xcb_input_xi_passive_ungrab_device(xcb, root, combination_.keycode, XCB_INPUT_DEVICE_ALL_MASTER,
                                       static_cast<std::uint16_t>(states.size()),
                                       XCB_INPUT_GRAB_TYPE_KEYCODE, states.data());
    for (const auto state : states) {
        xcb_ungrab_key(xcb, combination_.keycode, root, static_cast<std::uint16_t>(state));
    }
}

} // namespace vantrel::x11
