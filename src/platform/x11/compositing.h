#pragma once

#include "platform/x11/connection.h"
#include "platform/x11/handles.h"

#include <QTimer>

#include <optional>

namespace vantrel::x11 {

// Whether a compositing manager blends windows.
enum class Blending : std::uint8_t {
    no,
    awaited, // there is a manager, of which it is not known whether it has windows in its hands
    yes,
};

// Looks after the compositing manager. One that starts owns its selection for a while before it
// takes windows over, and some let go of them while a window fills the screen and nothing lies
// above it; until they take them back, the server draws translucent windows as opaque boxes. So a
// window that is never seen is asked about, but only while something is shown.
class Compositing final : private EventHandler {
public:
    explicit Compositing(Connection& connection);
    ~Compositing() override;
    Compositing(const Compositing&) = delete;
    Compositing& operator=(const Compositing&) = delete;

    [[nodiscard]] Blending blending() const { return blending_; }
    // Called after blending() changed, or is found to be still awaited.
    Observers<> changed;

    // Something is going to be shown. Asks, and waits for nothing: the answer comes with that of
    // the next request that has one.
    void begin();
    // Takes the answer, if one is still to come.
    void settle();
    // Nothing is shown any more.
    void end();

private:
    void makeProbe();
    [[nodiscard]] bool isServersOwn(xcb_window_t window) const;
    void handleEvent(const xcb_generic_event_t& event) override;
    void eventsDrained() override;
    void ask();
    void take(bool blends);
    void dropQuestion();
    void setBlending(Blending blending);

    Connection& connection_;
    bool owned_ = false;
    bool stale_ = false; // something may have changed
    Blending blending_ = Blending::no;
    bool shows_ = false;
    WindowHandle probe_; // like those of others: translucent ones have a pixmap in any case
    std::optional<xcb_void_cookie_t> question_;
    int unanswered_ = 0; // milliseconds that the manager has been waited for
    QTimer asking_;      // while it is not known to blend
    Subscription events_;
};

} // namespace vantrel::x11
