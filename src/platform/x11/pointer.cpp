#include "platform/x11/pointer.h"

#include <utility>

namespace vantrel::x11 {

X11Pointer::X11Pointer(Connection& connection, const X11Screens& screens, const Clock& clock)
    : connection_(connection), screens_(screens), clock_(clock) {
    if (connection.isXwayland()) {
        xwayland_.emplace(connection);
    }
}

std::optional<GlobalPoint> X11Pointer::location() {
    ask();
    const auto place = latestAnswer();
    return known_ ? std::optional(place) : std::nullopt;
}

GlobalPoint X11Pointer::latestAnswer() {
    if (question_) {
        takeAnswer();
    }
    return lastLocation();
}

void X11Pointer::ask() {
    if (std::exchange(askedIn_, connection_.turn()) == connection_.turn()) {
        return;
    }
    auto* xcb = connection_.xcb();
    if (question_) {
        xcb_discard_reply(xcb, question_->sequence);
    }
    question_ = xcb_query_pointer(xcb, connection_.root());
    xcb_flush(xcb);
}

void X11Pointer::takeAnswer() {
    auto* xcb = connection_.xcb();
    const auto question = *std::exchange(question_, std::nullopt);
    const Owned<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(xcb, question, nullptr));
    if (reply && reply->same_screen != 0) {
        answered_ = question.sequence;
        pixel_ = QPoint(reply->root_x, reply->root_y);
        known_ = !xwayland_ || xwayland_->isKnown(*reply, clock_.uptime());
    }
}

bool X11Pointer::answeredSince(const xcb_generic_event_t& event) const {
    return static_cast<std::int32_t>(event.full_sequence - answered_) < 0;
}

GlobalPoint X11Pointer::lastLocation() const {
    return screens_.pixelMap().toGlobal(pixel_);
}

} // namespace vantrel::x11
