#pragma once

#include "platform/event_monitors.h"
#include "platform/x11/button_mapping.h"
#include "platform/x11/pointer.h"

#include <list>
#include <vector>

namespace vantrel::x11 {

// Motion and presses of every mouse, touchpad and tablet, seen whoever has grabbed the pointer.
// They are told of when all that had arrived was read: first the presses, in their order and each
// with the place of the pointer, then the motion, once however many there were. A motion carries
// the place of the last query, as the raw events have none and asking is for who needs it; it
// always goes to the global monitors. A monitor that is added hears of no press from before, such
// as the one that led to it and waits to be read.
class X11EventMonitors final : public EventMonitors, private EventHandler {
public:
    // The window of this application that a press at the point goes to, null when there is none.
    using WindowAt = std::function<const EventWindow*(GlobalPoint)>;

    X11EventMonitors(Connection& connection, X11Pointer& pointer);

    // Until it is set, every press is taken for another application's. The program leaves it at
    // that: it treats presses in its own windows like all others.
    void setWindowAt(WindowAt windowAt) { windowAt_ = std::move(windowAt); }

    std::optional<Token> addGlobal(EventMask mask, GlobalHandler handler) override;
    std::optional<Token> addLocal(EventMask mask, LocalHandler handler) override;
    void remove(Token token) override;

private:
    template <typename Handler>
    struct Monitor {
        Token token = 0;
        EventMask mask = 0;      // 0 once it was removed
        std::uint32_t since = 0; // the number of a request: presses before it are not for it
        Handler handler;
    };

    void handleEvent(const xcb_generic_event_t& event) override;
    void eventsDrained() override;
    void select();
    void notePress(const xcb_generic_event_t& event);
    void noteFinger(const xcb_generic_event_t& event);
    void deliverPresses();
    void sendPress(EventType type, GlobalPoint place, std::uint32_t sequence);
    void send(const Event& event, std::uint32_t sequence);
    void eraseRemoved();

    Connection& connection_;
    X11Pointer& pointer_;
    WindowAt windowAt_;
    Token lastToken_ = 0;
    std::uint32_t newest_ = 0; // monitor's since
    // Lists, so that a handler may add a monitor while they are walked along.
    std::list<Monitor<GlobalHandler>> global_;
    std::list<Monitor<LocalHandler>> local_;
    std::uint32_t selected_ = 0;
    bool sending_ = false;
    std::vector<RawPress> presses_;
    std::vector<std::uint32_t> fingers_; // that are down
    bool moved_ = false;
    Subscription events_;
};

} // namespace vantrel::x11
