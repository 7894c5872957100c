#pragma once

#include "platform/overlay.h"
#include "platform/time.h"
#include "platform/wayland/connection.h"
#include "platform/wayland/outputs.h"
#include "platform/wayland/shared_picture.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace vantrel::wayland {

class WaylandOverlayWindow;

// A surface on the uppermost layer of each display, with a part of its own for each sprite.
class WaylandOverlayWindows final : public OverlayWindows, private BatchHandler {
public:
    // The connection must have a layer shell.
    WaylandOverlayWindows(Connection& connection, const WaylandScreens& screens,
                          const Clock& clock);

    std::unique_ptr<OverlayWindow> create(const Screen& screen) override;
    // Sends what has changed in the layers of every window.
    void flush();
    // Calls whenever what was sent for that display has come to its screen, which never happens
    // while it is off. One caller at a time.
    Subscription onFrame(std::uint32_t screen, std::function<void()> callback);

private:
    friend class WaylandOverlayWindow;

    struct Pace {
        std::uint32_t screen = 0;
        std::shared_ptr<const std::function<void()>> callback; // outlives a call that ends it
    };

    void eventsDrained() override;

    Connection& connection_;
    const WaylandScreens& screens_;
    const Clock& clock_;
    std::unique_ptr<SharedPicture> clear_; // one pixel, to lie under the sprites
    std::vector<WaylandOverlayWindow*> windows_;
    std::optional<Pace> pace_;
    bool frameCame_ = false;
    Subscription events_;
};

class WaylandTransaction final : public Transaction {
public:
    explicit WaylandTransaction(WaylandOverlayWindows& windows) : windows_(windows) {}

    // The trees are read by flush() alone, so there is nothing to hold back.
    void begin() override {}
    void commit() override {}
    void flush() override { windows_.flush(); }

private:
    WaylandOverlayWindows& windows_;
};

} // namespace vantrel::wayland
