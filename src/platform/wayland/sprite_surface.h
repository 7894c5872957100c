#pragma once

#include "platform/wayland/connection.h"
#include "platform/wayland/shared_picture.h"
#include "platform/wayland/sprite_cut.h"

#include <QImage>

#include <memory>
#include <optional>
#include <vector>

namespace vantrel::wayland {

// A display as surfaces on it see it.
struct DisplayArea {
    QSize points;
    double scale = 1;
};

// A part of an overlay's surface that shows one picture and lets every click through. Changes are
// sent by commit(), and seen once the surface that it belongs to was committed.
class SpriteSurface {
public:
    SpriteSurface(const Connection& connection, wl_surface& parent, const DisplayArea& display);

    // The whole picture, 32 bits and premultiplied, which differs from the former one inside an
    // area only. False when there is no memory for it.
    bool setPicture(const QImage& picture, const QRect& changed);
    // In pixels of the display.
    void place(QPoint topLeft) { place_ = topLeft; }
    void hide() { place_.reset(); }
    // Whether there was anything to send.
    bool commit();

private:
    [[nodiscard]] SharedPicture* freePicture(QSize size);
    [[nodiscard]] bool unmap();
    void attach();
    void send(const SpriteCut& cut);

    const Connection& connection_;
    DisplayArea display_;
    int margin_; // around the picture, so that all of its pixels can be shifted onto the display's
    Handle<wl_surface> surface_;
    Handle<wl_subsurface> subsurface_;
    Handle<wp_viewport> viewport_;
    // The one that shows, and those that the compositor may still read.
    std::vector<std::unique_ptr<SharedPicture>> pictures_;
    SharedPicture* picture_ = nullptr;
    QSize size_; // of the picture
    QRect damage_;
    std::optional<QPoint> place_;
    std::optional<SpriteCut> sent_; // while it shows
};

// Lets every click through, whatever the surface shows from the next commit on.
void letClicksThrough(const Connection& connection, wl_surface& surface);

} // namespace vantrel::wayland
