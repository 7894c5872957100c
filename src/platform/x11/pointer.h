#pragma once

#include "platform/input.h"
#include "platform/time.h"
#include "platform/x11/screens.h"
#include "platform/x11/xwayland.h"

namespace vantrel::x11 {

class X11Pointer final : public Pointer {
public:
    X11Pointer(Connection& connection, const X11Screens& screens, const Clock& clock);

    // Asks once in each turn of the connection, however many want to know.
    [[nodiscard]] std::optional<GlobalPoint> location() override;
    // The place in the last answer, without asking.
    [[nodiscard]] GlobalPoint lastLocation() const;
    // The same, where what was asked before is answered first.
    [[nodiscard]] GlobalPoint latestAnswer();
    // Whether that answer tells of the event as well, as the server sent the event before it.
    [[nodiscard]] bool answeredSince(const xcb_generic_event_t& event) const;

    // Asks for it already, so that the server answers meanwhile.
    void ask();

private:
    void takeAnswer();

    Connection& connection_;
    const X11Screens& screens_;
    const Clock& clock_;
    QPoint pixel_;
    bool known_ = true;
    std::uint64_t askedIn_ = 0;                          // the turn
    std::optional<xcb_query_pointer_cookie_t> question_; // not answered yet
    std::uint32_t answered_ = 0;                         // the number of the request
    std::optional<XwaylandPointer> xwayland_;            // where the server is one
};

} // namespace vantrel::x11
