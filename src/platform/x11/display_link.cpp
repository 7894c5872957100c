#include "platform/x11/display_link.h"

#include "platform/frame_timer.h"
#include "platform/x11/handles.h"

#include <QTimer>

#include <chrono>
#include <cmath>
#include <memory>

#include <xcb/present.h>

namespace vantrel::x11 {

namespace {

using namespace std::chrono_literals;

// How long the server may leave out vertical blanks before a timer takes over.
constexpr auto blankTimeout = 500ms;

class X11DisplayLink final : public DisplayLink, private EventHandler {
public:
    X11DisplayLink(Connection& connection, QRect display, double rate,
                   std::function<void()> target);
    ~X11DisplayLink() override;
    X11DisplayLink(const X11DisplayLink&) = delete;
    X11DisplayLink& operator=(const X11DisplayLink&) = delete;

private:
    void handleEvent(const xcb_generic_event_t& event) override;
    void eventsDrained() override;
    void createWindow(QRect display);
    void requestBlank();
    void useTimer();
    void checkLife();

    Connection& connection_;
    double rate_;
    std::shared_ptr<const std::function<void()>> target_; // outlives a call that ends the link
    WindowHandle window_; // never mapped; its place says which display is meant
    std::uint32_t presentEvents_ = 0;
    PaceCheck pace_;
    bool blank_ = false;
    bool asksAgain_ = false;
    bool alive_ = true; // since the last look
    std::unique_ptr<FrameTimer> timer_;
    QTimer lifeCheck_;
    Subscription events_;
};

X11DisplayLink::X11DisplayLink(Connection& connection, QRect display, double rate,
                               std::function<void()> target)
    : connection_(connection),
      rate_(rate),
      target_(std::make_shared<const std::function<void()>>(std::move(target))),
      pace_(rate) {
    if (connection_.majorOpcode(xcb_present_id) == 0) {
        useTimer();
        return;
    }
    events_ = connection_.addHandler(*this);
    createWindow(display);
    requestBlank();
    QObject::connect(&lifeCheck_, &QTimer::timeout, [this] { checkLife(); });
    lifeCheck_.start(blankTimeout);
}

X11DisplayLink::~X11DisplayLink() {
    if (window_) {
        xcb_present_select_input(connection_.xcb(), presentEvents_, window_.id(), 0);
    }
}

void X11DisplayLink::createWindow(QRect display) {
    auto* xcb = connection_.xcb();
    window_ = WindowHandle(xcb);
    const std::uint32_t overrideRedirect = 1;
    const auto center = display.center();
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, window_.id(), connection_.root(),
                      static_cast<std::int16_t>(center.x()), static_cast<std::int16_t>(center.y()),
                      1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_OVERRIDE_REDIRECT, &overrideRedirect);
    presentEvents_ = xcb_generate_id(xcb);
    xcb_present_select_input(xcb, presentEvents_, window_.id(),
                             XCB_PRESENT_EVENT_MASK_COMPLETE_NOTIFY);
}

void X11DisplayLink::requestBlank() {
    xcb_present_notify_msc(connection_.xcb(), window_.id(), 0, 0, 1, 0);
}

void X11DisplayLink::handleEvent(const xcb_generic_event_t& event) {
    if (eventNumber(event) != XCB_GE_GENERIC) {
        return;
    }
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if (generic.extension != connection_.majorOpcode(xcb_present_id) ||
        generic.event_type != XCB_PRESENT_COMPLETE_NOTIFY) {
        return;
    }
    const auto& complete = reinterpret_cast<const xcb_present_complete_notify_event_t&>(event);
    if (complete.event != presentEvents_) {
        return;
    }
    alive_ = true;
    switch (pace_.add(complete.msc, complete.ust)) {
    case PaceCheck::Verdict::blank:
        blank_ = true;
        break;
    case PaceCheck::Verdict::none:
        asksAgain_ = true;
        useTimer();
        break;
    case PaceCheck::Verdict::useless:
        useTimer();
        break;
    }
}

void X11DisplayLink::eventsDrained() {
    if (!std::exchange(blank_, false)) {
        return;
    }
    if (timer_) {
        // The display was off, and is on again.
        timer_.reset();
        lifeCheck_.start(blankTimeout);
    }
    // Goes out with what the target asks of the server.
    requestBlank();
    const auto target = target_;
    (*target)();
}

void X11DisplayLink::useTimer() {
    lifeCheck_.stop();
    if (!timer_) {
        timer_ = std::make_unique<FrameTimer>(rate_, [this, target = target_] {
            if (std::exchange(asksAgain_, false)) {
                requestBlank();
            }
            (*target)();
        });
    }
}

// The request for the next blank stays with the server, which answers when there is one again.
void X11DisplayLink::checkLife() {
    if (!std::exchange(alive_, false)) {
        useTimer();
    }
}

} // namespace

// Xwayland from 24.1 on answers at once for a window that shows nothing, with the same blank each
// time. A counter that starts anew, as some do when a display comes back, looks so once.
PaceCheck::Verdict PaceCheck::add(std::uint64_t count, std::uint64_t microseconds) {
    constexpr int enough = 3;
    const Blank blank{count, microseconds};
    const auto last = std::exchange(last_, blank);
    const bool grew = !last || (count > last->count && microseconds > last->microseconds);
    withoutBlank_ = grew ? 0 : withoutBlank_ + 1;
    if (!first_ || !grew) {
        first_ = blank;
    }
    useless_ = useless_ || withoutBlank_ >= enough || !keepsRate(blank);
    if (useless_) {
        return Verdict::useless;
    }
    return grew ? Verdict::blank : Verdict::none;
}

// As far as is known by now.
bool PaceCheck::keepsRate(const Blank& blank) {
    constexpr std::uint64_t wanted = 30;
    const std::uint64_t blanks = blank.count - first_->count;
    if (rateSeen_ || blanks < wanted) {
        return true;
    }
    rateSeen_ = true;
    const double measured = static_cast<double>(blanks) * 1e6 /
                            static_cast<double>(blank.microseconds - first_->microseconds);
    return std::abs(measured / rate_ - 1) < 0.1;
}

X11DisplayLinks::X11DisplayLinks(Connection& connection, const X11Screens& screens)
    : connection_(connection), screens_(screens) {}

std::unique_ptr<DisplayLink> X11DisplayLinks::create(const Screen& screen, FrameRateRange range,
                                                     std::function<void()> target) {
    return std::make_unique<X11DisplayLink>(connection_, screens_.pixelsOf(screen),
                                            static_cast<double>(range.preferred),
                                            std::move(target));
}

} // namespace vantrel::x11
