#pragma once

#include "platform/input.h"
#include "platform/wayland/connection.h"
#include "platform/wayland/outputs.h"
#include "platform/wayland/pointer_track.h"

#include <memory>
#include <vector>

namespace vantrel::wayland {

class CursorSession;

// The pointer, as the sessions tell that are meant for capturing it. They are silent while the
// compositor paints it into the picture itself, as for a recorder that wants it in there.
class WaylandPointer final : public Pointer {
public:
    // The connection must have cursor sessions.
    WaylandPointer(Connection& connection, WaylandScreens& screens);
    ~WaylandPointer() override;
    WaylandPointer(const WaylandPointer&) = delete;
    WaylandPointer& operator=(const WaylandPointer&) = delete;

    [[nodiscard]] std::optional<GlobalPoint> location() override;

    // Whether to be told of it at all; not so at first.
    void watch(bool watching);

private:
    void findSeat();
    void noteCapabilities(std::uint32_t capabilities);
    void updateSessions();

    Connection& connection_;
    const WaylandScreens& screens_;
    Handle<wl_seat> seat_;
    std::uint32_t seatName_ = 0;
    Handle<wl_pointer> pointer_; // null while the seat has none
    PointerTrack track_;
    std::vector<std::unique_ptr<CursorSession>> sessions_; // one for each display
    bool watching_ = false;
    std::vector<Subscription> subscriptions_;
};

} // namespace vantrel::wayland
