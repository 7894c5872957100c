#pragma once

#include "platform/x11/connection.h"

#include <cstdint>
#include <vector>

namespace vantrel::x11 {

// A button that went down, as a raw event tells of it.
struct RawPress {
    std::uint16_t device = 0;   // the pointer that it moves; 0 for a button without mapping
    std::uint16_t source = 0;   // the mouse itself; 0 likewise
    std::uint32_t button = 0;   // by its place on the mouse
    std::uint32_t sequence = 0; // of the last request that the server had carried out by then
};

// Which button a press is to whoever uses the mouse, a left-handed person for instance. A device
// and the pointer that it is attached to have a mapping each, and the buttons pass through both.
// Nothing tells of a change in a device's own mapping, so they are asked for with the presses: the
// requests are sent at once, and their answers do not cost another wait after that of a later
// request.
class ButtonMapping {
public:
    explicit ButtonMapping(const Connection& connection) : connection_(connection) {}
    ~ButtonMapping();
    ButtonMapping(const ButtonMapping&) = delete;
    ButtonMapping& operator=(const ButtonMapping&) = delete;

    void request(const RawPress& press);
    // 1 is left, 3 is right; a device that is gone has its buttons in the usual order.
    [[nodiscard]] std::uint32_t buttonOf(const RawPress& press);

private:
    struct Device {
        std::uint16_t id = 0;
        unsigned sequence = 0; // of the request, 0 once it is answered
        std::vector<std::uint8_t> buttons{};
    };

    void requestDevice(std::uint16_t id);
    [[nodiscard]] std::uint32_t mapped(std::uint16_t id, std::uint32_t button);
    void readAnswer(Device& device) const;

    const Connection& connection_;
    std::vector<Device> devices_;
};

} // namespace vantrel::x11
