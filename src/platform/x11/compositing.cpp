#include "platform/x11/compositing.h"

#include "platform/x11/selection.h"

#include <algorithm>
#include <utility>

#include <xcb/composite.h>

namespace vantrel::x11 {

namespace {

// Milliseconds between two questions: often at first, since a mark waits for the answer.
constexpr int shortestInterval = 4;
constexpr int longestInterval = 2000;
// How long a mark waits before it is shown in the way that needs no manager.
constexpr int answerTimeout = 400;

} // namespace

Compositing::Compositing(Connection& connection)
    : connection_(connection), events_(connection.addHandler(*this)) {
    asking_.setSingleShot(true);
    QObject::connect(&asking_, &QTimer::timeout, &asking_, [this] {
        ask();
        settle();
    });
    if (connection_.argbVisual() == 0 || connection_.majorOpcode(xcb_composite_id) == 0) {
        return;
    }
    auto* xcb = connection_.xcb();
    xcb_discard_reply(xcb, xcb_composite_query_version(xcb, 0, 2).sequence);
    owned_ = watchSelection(connection_, connection_.atom(Atom::compositingManager));
    blending_ = owned_ ? Blending::awaited : Blending::no;
    makeProbe();
}

Compositing::~Compositing() {
    dropQuestion();
}

void Compositing::makeProbe() {
    auto* xcb = connection_.xcb();
    probe_ = WindowHandle(xcb);
    const std::uint32_t overrideRedirect = 1;
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, probe_.id(), connection_.root(), -10, -10, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                      &overrideRedirect);
    xcb_map_window(xcb, probe_.id());
    connection_.selectRootEvents(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
}

// Such as the window that managers draw on, and take away while they have let go of the others.
bool Compositing::isServersOwn(xcb_window_t window) const {
    return (window & ~xcb_get_setup(connection_.xcb())->resource_id_mask) == 0;
}

void Compositing::handleEvent(const xcb_generic_event_t& event) {
    const auto number = eventNumber(event);
    if (number == XCB_MAP_NOTIFY) {
        const auto& map = reinterpret_cast<const xcb_map_notify_event_t&>(event);
        stale_ = stale_ || isServersOwn(map.window);
    } else if (number == XCB_UNMAP_NOTIFY) {
        const auto& unmap = reinterpret_cast<const xcb_unmap_notify_event_t&>(event);
        stale_ = stale_ || isServersOwn(unmap.window);
    } else if (const auto owned =
                   ownedAfter(connection_, event, connection_.atom(Atom::compositingManager))) {
        owned_ = *owned;
        stale_ = true;
    }
}

void Compositing::eventsDrained() {
    if (!std::exchange(stale_, false)) {
        return;
    }
    if (!owned_) {
        asking_.stop();
        dropQuestion();
        setBlending(Blending::no);
    } else if (!shows_) {
        setBlending(Blending::awaited);
    } else {
        unanswered_ = 0;
        ask();
        settle();
    }
}

void Compositing::begin() {
    shows_ = true;
    unanswered_ = 0;
    if (owned_) {
        ask();
    }
}

void Compositing::end() {
    shows_ = false;
    asking_.stop();
    dropQuestion();
    setBlending(owned_ ? Blending::awaited : Blending::no);
}

// Only a window that was taken over has a pixmap to name.
void Compositing::ask() {
    dropQuestion();
    auto* xcb = connection_.xcb();
    const auto pixmap = xcb_generate_id(xcb);
    question_ = xcb_composite_name_window_pixmap_checked(xcb, probe_.id(), pixmap);
    xcb_discard_reply(xcb, xcb_free_pixmap_checked(xcb, pixmap).sequence);
}

void Compositing::settle() {
    if (!question_) {
        return;
    }
    const auto question = *std::exchange(question_, std::nullopt);
    const Owned<xcb_generic_error_t> error(xcb_request_check(connection_.xcb(), question));
    take(!error && !connection_.isLost());
}

void Compositing::take(bool blends) {
    if (blends) {
        asking_.stop();
        setBlending(Blending::yes);
        return;
    }
    const int interval = std::clamp(unanswered_, shortestInterval, longestInterval);
    unanswered_ += interval;
    asking_.start(interval);
    const bool waits = blending_ == Blending::awaited && unanswered_ < answerTimeout;
    setBlending(waits ? Blending::awaited : Blending::no);
}

void Compositing::dropQuestion() {
    if (question_) {
        xcb_discard_reply(connection_.xcb(), question_->sequence);
        question_.reset();
    }
}

void Compositing::setBlending(Blending blending) {
    if (std::exchange(blending_, blending) != blending || blending == Blending::awaited) {
        changed.notify();
    }
}

} // namespace vantrel::x11
