#pragma once

#include "platform/input.h"
#include "platform/wayland/connection.h"
#include "platform/wayland/pointer.h"

#include <list>

namespace vantrel::wayland {

// Motion, once for all that had arrived. A compositor tells nobody of presses that are meant for
// others, so monitors of these are refused.
class WaylandEventMonitors final : public EventMonitors, private BatchHandler {
public:
    WaylandEventMonitors(Connection& connection, WaylandPointer& pointer);

    std::optional<Token> addGlobal(EventMask mask, GlobalHandler handler) override;
    // Has nothing left to hear.
    std::optional<Token> addLocal(EventMask mask, LocalHandler handler) override;
    void remove(Token token) override;

private:
    struct Monitor {
        Token token = 0; // 0 once it was removed
        GlobalHandler handler;
    };

    // Also tells when the place became unknown.
    void eventsDrained() override;
    void eraseRemoved();

    WaylandPointer& pointer_;
    Token lastToken_ = 0;
    std::list<Monitor> monitors_; // a list, so that a handler may add one while it is walked along
    bool sending_ = false;
    std::optional<GlobalPoint> lastPlace_;
    Subscription events_;
};

} // namespace vantrel::wayland
