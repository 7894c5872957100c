#include "testdesk/synthetic_input.h"

#include <algorithm>
#include <stdexcept>

#include <xcb/xtest.h>

namespace vantrel::desktop {

// A held button or key would outlast its device.
SyntheticInput::~SyntheticInput() {
    if (connection_.failed()) {
        return;
    }
    for (const std::uint8_t button : heldButtons_) {
        fake(XCB_BUTTON_RELEASE, button, {}, Wait::no);
    }
    for (const std::uint8_t key : heldKeys_) {
        fake(XCB_KEY_RELEASE, key, {}, Wait::no);
    }
}

void SyntheticInput::moveTo(PixelPoint place, Wait wait) {
    fake(XCB_MOTION_NOTIFY, 0, place, wait);
}

void SyntheticInput::press(Button button) {
    heldButtons_.push_back(static_cast<std::uint8_t>(button));
    fake(XCB_BUTTON_PRESS, static_cast<std::uint8_t>(button), {}, Wait::forServer);
}

void SyntheticInput::release(Button button) {
    std::erase(heldButtons_, static_cast<std::uint8_t>(button));
    fake(XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(button), {}, Wait::forServer);
}

void SyntheticInput::click(Button button) {
    press(button);
    release(button);
}

void SyntheticInput::pressKey(std::uint32_t keysym) {
    const std::uint8_t keycode = keycodeOf(keysym);
    heldKeys_.push_back(keycode);
    fake(XCB_KEY_PRESS, keycode, {}, Wait::forServer);
}

void SyntheticInput::releaseKey(std::uint32_t keysym) {
    const std::uint8_t keycode = keycodeOf(keysym);
    std::erase(heldKeys_, keycode);
    fake(XCB_KEY_RELEASE, keycode, {}, Wait::forServer);
}

void SyntheticInput::typeChord(const std::vector<std::uint32_t>& keysyms) {
    for (const std::uint32_t keysym : keysyms) {
        pressKey(keysym);
    }
    std::for_each(keysyms.rbegin(), keysyms.rend(), [this](auto keysym) { releaseKey(keysym); });
}

void SyntheticInput::fake(std::uint8_t type, std::uint8_t detail, PixelPoint place, Wait wait) {
    xcb_test_fake_input(connection_.get(), type, detail, XCB_CURRENT_TIME, connection_.root(),
                        static_cast<std::int16_t>(place.x), static_cast<std::int16_t>(place.y), 0);
    if (wait == Wait::forServer) {
        connection_.sync();
    } else {
        xcb_flush(connection_.get());
    }
}

std::uint8_t SyntheticInput::keycodeOf(std::uint32_t keysym) const {
    const xcb_setup_t* setup = xcb_get_setup(connection_.get());
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto cookie = xcb_get_keyboard_mapping(connection_.get(), setup->min_keycode, count);
    const auto reply = ownReply(xcb_get_keyboard_mapping_reply(connection_.get(), cookie, nullptr));
    const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
    for (std::ptrdiff_t key = 0; key < count; ++key) {
        if (symbols[key * reply->keysyms_per_keycode] == keysym) {
            return static_cast<std::uint8_t>(setup->min_keycode + key);
        }
    }
    throw std::runtime_error("the keyboard has no key for the symbol " + std::to_string(keysym));
}

} // namespace vantrel::desktop
