#pragma once

#include "platform/geometry.h"
#include "platform/screens.h"

#include <memory>

namespace vantrel {

class Layer;

// A transparent surface over one display, above every other window and on every workspace, which
// neither takes clicks nor focus. It shows its root layer, cut at its frame. Destroying it takes it
// off the screen.
class OverlayWindow {
public:
    virtual ~OverlayWindow() = default;

    [[nodiscard]] virtual GlobalRect frame() const = 0;
    // The layer's coordinates start at the bottom-left corner of frame(). It must outlive the
    // window.
    virtual void setRootLayer(Layer& layer) = 0;
    virtual void orderFront() = 0;
};

class OverlayWindows {
public:
    virtual ~OverlayWindows() = default;

    [[nodiscard]] virtual std::unique_ptr<OverlayWindow> create(const Screen& screen) = 0;
};

} // namespace vantrel
