#include "platform/x11/button_mapping.h"

#include <algorithm>
#include <utility>

#include <xcb/xinput.h>

namespace vantrel::x11 {

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

} // namespace vantrel::x11
