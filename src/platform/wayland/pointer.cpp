#include "platform/wayland/pointer.h"

#include "platform/wayland/listener.h"

#include <algorithm>
#include <utility>

#include <wayland-client.h>
#include <wayland-image-copy-capture.h>

namespace vantrel::wayland {

// On one display.
class CursorSession {
public:
    CursorSession(const Connection& connection, wl_output* output, wl_pointer* pointer,
                  std::uint32_t display, PointerTrack& track);
    ~CursorSession() { track_.forget(display_); }
    CursorSession(const CursorSession&) = delete;
    CursorSession& operator=(const CursorSession&) = delete;

    [[nodiscard]] std::uint32_t display() const { return display_; }

private:
    void enter() { track_.enter(display_); }
    void leave() { track_.leave(display_); }
    void move(std::int32_t x, std::int32_t y) { track_.move(display_, QPoint(x, y)); }

    std::uint32_t display_;
    PointerTrack& track_;
    Handle<ext_image_capture_source_v1> source_;
    Handle<ext_image_copy_capture_cursor_session_v1> session_;
};

CursorSession::CursorSession(const Connection& connection, wl_output* output, wl_pointer* pointer,
                             std::uint32_t display, PointerTrack& track)
    : display_(display),
      track_(track),
      source_(ext_output_image_capture_source_manager_v1_create_source(connection.captureSources(),
                                                                       output)),
      session_(ext_image_copy_capture_manager_v1_create_pointer_cursor_session(
          connection.captures(), source_.get(), pointer)) {
    connection.tellFramesOf(session_.get());
    static constexpr ext_image_copy_capture_cursor_session_v1_listener listener{
        .enter = relay<&CursorSession::enter, ext_image_copy_capture_cursor_session_v1>,
        .leave = relay<&CursorSession::leave, ext_image_copy_capture_cursor_session_v1>,
        .position = relay<&CursorSession::move, ext_image_copy_capture_cursor_session_v1>,
        .hotspot = ignored,
    };
    ext_image_copy_capture_cursor_session_v1_add_listener(session_.get(), &listener, this);
}

WaylandPointer::WaylandPointer(Connection& connection, WaylandScreens& screens)
    : connection_(connection), screens_(screens) {
    subscriptions_.push_back(connection.appeared.add([this](const Global&) { findSeat(); }));
    subscriptions_.push_back(connection.vanished.add([this](const Global& global) {
        if (seat_ && global.name == seatName_) {
            noteCapabilities(0);
            seat_.reset();
            findSeat();
        }
    }));
    subscriptions_.push_back(screens.onLayoutChange([this] { updateSessions(); }));
    subscriptions_.push_back(connection.lost.add([this] { noteCapabilities(0); }));
    findSeat();
}

WaylandPointer::~WaylandPointer() = default;

std::optional<GlobalPoint> WaylandPointer::location() {
    const auto place = track_.place();
    const auto* screen = place ? screens_.screen(place->display) : nullptr;
    return screen != nullptr ? std::optional(toGlobal(place->pixel, *screen)) : std::nullopt;
}

void WaylandPointer::watch(bool watching) {
    if (std::exchange(watching_, watching) != watching) {
        updateSessions();
    }
}

void WaylandPointer::findSeat() {
    const auto& globals = connection_.globals();
    const auto found = std::ranges::find(globals, wl_seat_interface.name, &Global::interface);
    if (seat_ || found == globals.end()) {
        return;
    }
    static constexpr wl_seat_listener listener{
        .capabilities = relay<&WaylandPointer::noteCapabilities, wl_seat>,
        .name = ignored,
    };
    seat_.reset(static_cast<wl_seat*>(connection_.bind(*found, wl_seat_interface, 3)));
    seatName_ = found->name;
    wl_seat_add_listener(seat_.get(), &listener, this);
}

void WaylandPointer::noteCapabilities(std::uint32_t capabilities) {
    const bool hasPointer = (capabilities & WL_SEAT_CAPABILITY_POINTER) != 0;
    if (hasPointer == (pointer_ != nullptr)) {
        return;
    }
    sessions_.clear();
    pointer_.reset(hasPointer ? wl_seat_get_pointer(seat_.get()) : nullptr);
    updateSessions();
}

void WaylandPointer::updateSessions() {
    const bool wanted = watching_ && pointer_;
    std::erase_if(sessions_, [&](const auto& session) {
        return !wanted || screens_.screen(session->display()) == nullptr;
    });
    for (const auto& screen : screens_.list()) {
        // None of one that has just gone.
        auto* output = screens_.output(screen);
        if (wanted && output != nullptr &&
            std::ranges::none_of(
                sessions_, [&](const auto& session) { return session->display() == screen.id; })) {
            sessions_.push_back(std::make_unique<CursorSession>(connection_, output, pointer_.get(),
                                                                screen.id, track_));
        }
    }
}

} // namespace vantrel::wayland
