#pragma once

#include "platform/event_monitors.h"
#include "platform/x11/pointer.h"

#include <vector>

namespace vantrel::x11 {

// Motion of every mouse, touchpad and tablet, seen whoever has grabbed the pointer. However many
// motions have arrived, they are told of once, when all of them were read. A motion carries the
// place of the last query: the raw events have none, and asking is for who needs it.
class X11EventMonitors final : public EventMonitors, private EventHandler {
public:
    X11EventMonitors(Connection& connection, const X11Pointer& pointer);

    std::optional<Token> addGlobal(EventMask mask, GlobalHandler handler) override;
    std::optional<Token> addLocal(EventMask mask, LocalHandler handler) override;
    void remove(Token token) override;

private:
    template <typename Handler>
    struct Monitor {
        Token token = 0;
        EventMask mask = 0;
        Handler handler; // empty once it was removed
    };

    void handleEvent(const xcb_generic_event_t& event) override;
    void eventsDrained() override;
    void select();
    void send(const Event& event);

    Connection& connection_;
    const X11Pointer& pointer_;
    Token lastToken_ = 0;
    std::vector<Monitor<GlobalHandler>> global_;
    std::vector<Monitor<LocalHandler>> local_;
    bool sending_ = false;
    bool moved_ = false;
    Subscription events_;
};

} // namespace vantrel::x11
