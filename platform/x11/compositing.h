#pragma once

#include "platform/x11/connection.h"

namespace vantrel::x11 {

// Whether a compositing manager blends windows, as the owner of its selection tells.
class Compositing final : private EventHandler {
public:
    explicit Compositing(Connection& connection);

    [[nodiscard]] bool active() const { return active_; }
    // Called after active() changed.
    Observers<> changed;

private:
    void handleEvent(const xcb_generic_event_t& event) override;
    void eventsDrained() override;

    Connection& connection_;
    bool active_ = false;
    bool reported_ = false; // what the observers know
    Subscription events_;
};

} // namespace vantrel::x11
