#pragma once

#include "platform/display.h"
#include "platform/geometry.h"

#include <memory>

// What is drawn above everything else.

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

// Changes of layers reach the screen together: between begin and commit they are collected, and
// flush shows all that was committed. Layers change at once, without implicit animations.
class Transaction {
public:
    virtual ~Transaction() = default;

    virtual void begin() = 0;
    virtual void commit() = 0;
    virtual void flush() = 0;
};

} // namespace vantrel
