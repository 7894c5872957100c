#pragma once

#include "platform/input.h"
#include "platform/monitor_list.h"
#include "platform/wayland/connection.h"
#include "platform/wayland/pointer.h"

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
    // Also tells when the place became unknown.
    void eventsDrained() override;

    WaylandPointer& pointer_;
    MonitorList monitors_;
    std::optional<GlobalPoint> lastPlace_;
    Subscription events_;
};

} // namespace vantrel::wayland
