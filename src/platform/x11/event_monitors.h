#pragma once

#include "platform/input.h"
#include "platform/monitor_list.h"
#include "platform/x11/connection.h"
#include "platform/x11/pointer.h"

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

// The fingers that are on touchscreens.
class Fingers {
public:
    // Whether it is the first one, which makes a press; those beside it make none.
    bool down(std::uint16_t device, std::uint32_t touch);
    void up(std::uint32_t touch);
    // Nobody may tell of the end of its touches.
    void deviceGone(std::uint16_t device);
    void clear() { fingers_.clear(); }

private:
    struct Finger {
        std::uint16_t device = 0;
        std::uint32_t touch = 0;
    };

    std::vector<Finger> fingers_;
};

// Motion and presses of every mouse, touchpad and tablet, seen whoever has grabbed the pointer.
// They are told of when all that had arrived was read: first the presses, in their order and each
// with the place of the pointer (before it moved on, where it did so at once), then the motion,
// once however many there were. A motion carries the place of the last query, as the raw events
// have none and asking is for who needs it. What happens in this program's own windows goes to the
// global monitors like all else. A monitor that is added hears of no press from before, such as the
// one that led to it and waits to be read.
class X11EventMonitors final : public EventMonitors, private EventHandler {
public:
    X11EventMonitors(Connection& connection, X11Pointer& pointer);

    std::optional<Token> addGlobal(EventMask mask, GlobalHandler handler) override;
    // Has nothing left to hear.
    std::optional<Token> addLocal(EventMask mask, LocalHandler handler) override;
    void remove(Token token) override;

private:
    void handleEvent(const xcb_generic_event_t& event) override;
    void eventsDrained() override;
    void select();
    void notePress(const xcb_generic_event_t& event);
    void noteDeparture();
    void noteFinger(const xcb_generic_event_t& event);
    void deliverPresses();
    void noteDevices(const xcb_generic_event_t& event);

    Connection& connection_;
    X11Pointer& pointer_;
    MonitorList monitors_;     // numbered by requests: presses before its own are not for one
    std::uint32_t newest_ = 0; // monitor's number
    std::uint32_t selected_ = 0;
    std::vector<RawPress> presses_;
    std::size_t pressedThere_ = 0; // how many of them, before the pointer left that place
    GlobalPoint left_;
    Fingers fingers_;
    bool moved_ = false;
    Subscription events_;
};

} // namespace vantrel::x11
