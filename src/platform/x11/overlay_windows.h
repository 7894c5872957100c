#pragma once

#include "platform/layers/sprite_scene.h"
#include "platform/overlay.h"
#include "platform/time.h"
#include "platform/x11/compositing.h"
#include "platform/x11/screens.h"
#include "platform/x11/sprite_stack.h"

#include <QTimer>

#include <memory>
#include <vector>

namespace vantrel::x11 {

class X11OverlayWindow;

class X11OverlayWindows final : public OverlayWindows {
public:
    X11OverlayWindows(Connection& connection, const X11Screens& screens, const Clock& clock);

    std::unique_ptr<OverlayWindow> create(const Screen& screen) override;
    // Sends what has changed in the layers of every window.
    void flush();

private:
    friend class X11OverlayWindow;
    // With the first window and the last.
    void begin();
    void end();
    void compositingChanged();
    void makeSprites(SpriteKind kind);
    void prepareWindows();
    void getReady();
    void mapAll();
    void setGuardColor(QRgb color);

    Connection& connection_;
    const X11Screens& screens_;
    const Clock& clock_;
    Compositing compositing_;
    SpriteStack stack_;
    // One pixel in the corner of the screen, as some compositing managers do not blend anything
    // while a window fills the screen and nothing lies above it. None where nothing blends.
    SpriteWindow* guard_ = nullptr;
    QRgb guardColor_ = 0; // premultiplied
    const QRect guardPlace_{0, 0, 1, 1};
    QTimer readying_;
    std::vector<X11OverlayWindow*> windows_;
    Subscription compositingChanges_;
};

class X11Transaction final : public Transaction {
public:
    explicit X11Transaction(X11OverlayWindows& windows) : windows_(windows) {}

    // The trees are read by flush() alone, so there is nothing to hold back.
    void begin() override {}
    void commit() override {}
    void flush() override { windows_.flush(); }

private:
    X11OverlayWindows& windows_;
};

} // namespace vantrel::x11
