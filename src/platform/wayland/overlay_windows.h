#pragma once

#include "platform/overlay.h"
#include "platform/time.h"
#include "platform/wayland/connection.h"
#include "platform/wayland/outputs.h"
#include "platform/wayland/shared_picture.h"

#include <memory>
#include <vector>

namespace vantrel::wayland {

class WaylandOverlayWindow;

// A surface on the uppermost layer of each display, with a part of its own for each sprite.
class WaylandOverlayWindows final : public OverlayWindows {
public:
    // The connection must have a layer shell.
    WaylandOverlayWindows(Connection& connection, const WaylandScreens& screens,
                          const Clock& clock);

    std::unique_ptr<OverlayWindow> create(const Screen& screen) override;
    // Sends what has changed in the layers of every window.
    void flush();

private:
    friend class WaylandOverlayWindow;

    Connection& connection_;
    const WaylandScreens& screens_;
    const Clock& clock_;
    std::unique_ptr<SharedPicture> clear_; // one pixel, to lie under the sprites
    std::vector<WaylandOverlayWindow*> windows_;
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
