#pragma once

#include "platform/x11/connection.h"
#include "platform/x11/handles.h"

#include <QTimer>

namespace vantrel::x11 {

// Whether a compositing manager blends windows. One that starts owns its selection for a while
// before it takes windows over, and until then the server would draw translucent ones as opaque
// boxes; so a window that is never seen is looked after as well.
class Compositing final : private EventHandler {
public:
    explicit Compositing(Connection& connection);

    [[nodiscard]] bool active() const { return active_; }
    // Called after active() changed.
    Observers<> changed;

private:
    void handleEvent(const xcb_generic_event_t& event) override;
    void eventsDrained() override;
    void probe();
    [[nodiscard]] bool takesWindowsOver();
    void setActive(bool active);

    Connection& connection_;
    bool owned_ = false;
    bool ownerChanged_ = false;
    bool active_ = false;
    QTimer probing_; // while there is an owner that has not taken windows over
    Subscription events_;
};

} // namespace vantrel::x11
