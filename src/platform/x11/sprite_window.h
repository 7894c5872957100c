#pragma once

#include "platform/x11/connection.h"
#include "platform/x11/handles.h"

#include <QImage>
#include <QPoint>
#include <QRect>

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace vantrel::x11 {

// Puts parts of pictures into drawables. Keeps its buffer, so that it takes no memory in a frame.
class ImageWriter {
public:
    ImageWriter(Connection& connection, std::uint8_t depth);

    // The area of the picture, at the same place in the drawable. The picture is in the format that
    // the drawable's depth has on the server.
    void put(xcb_drawable_t drawable, const QImage& picture, const QRect& area);
    [[nodiscard]] std::uint8_t depth() const { return depth_; }

private:
    Connection& connection_;
    std::uint8_t depth_;
    GcHandle gc_;
    std::vector<std::uint8_t> rows_;
};

// How pictures are shown: blended by a compositing manager, or opaque in windows of their shape.
enum class SpriteKind : std::uint8_t { translucent, shaped };

// What all sprite windows of a kind share.
class SpriteResources {
public:
    SpriteResources(Connection& connection, SpriteKind kind);

    [[nodiscard]] SpriteKind kind() const { return kind_; }
    [[nodiscard]] xcb_visualid_t visual() const { return visual_; }
    [[nodiscard]] xcb_colormap_t colormap() const { return colormap_.id(); }
    [[nodiscard]] Connection& connection() const { return connection_; }
    [[nodiscard]] ImageWriter& writer() { return writer_; }

private:
    Connection& connection_;
    SpriteKind kind_;
    xcb_visualid_t visual_;
    ColormapHandle colormap_;
    ImageWriter writer_;
};

// A small window that shows one picture, lets every click through and is never managed by a window
// manager. While it shows nothing it is parked outside of the root window rather than unmapped:
// compositing managers fade and animate windows that are mapped. Changes are sent by commit(),
// other than unmap() and those of the order. It maps a window last, with all that it is to show, as
// a compositing manager looks at it then.
class SpriteWindow {
public:
    explicit SpriteWindow(SpriteResources& resources);

    // Waits for the server's answer when it is first asked. A window that takes clicks must not be
    // mapped.
    [[nodiscard]] bool letsClicksThrough();
    [[nodiscard]] xcb_window_t id() const { return window_.id(); }

    // The whole premultiplied picture; the window takes its size. If it differs from the former one
    // in a part only, that goes to the screen at once, other than in a shaped window.
    void setPicture(const QImage& picture, const QRect& changed);
    // In pixels of the root window; what lies outside of the clip is not shown. The rectangles of
    // the clip do not overlap, and stay where they are until the window is placed anew or parked.
    void place(QPoint topLeft, std::span<const QRect> clip);
    void park();
    void map() { mapped_ = true; }
    void unmap();
    void raise();
    void stackAbove(const SpriteWindow& sibling);
    void commit();

private:
    // What the clip leaves of the window, relative to it.
    struct Shown {
        bool all = true;
        std::vector<QRect> parts; // when it is not all
        bool operator==(const Shown&) const = default;
    };

    void letClicksThrough();
    void setProperties();
    void applyPlace();
    void applyShape();
    void findShown();

    SpriteResources& resources_;
    WindowHandle window_;
    std::optional<xcb_void_cookie_t> clicksThrough_; // until it is asked for
    PixmapHandle picture_;                           // to be shown by the next commit
    std::vector<xcb_rectangle_t> cut_;               // of a shaped window's picture
    QSize size_{1, 1};
    QSize sentSize_{1, 1};
    std::optional<QPoint> place_; // none while parked
    std::optional<QPoint> sentPlace_;
    std::span<const QRect> clip_;
    // Kept, as are the rectangles, so that a frame takes no memory.
    Shown shown_;
    Shown sentShown_;
    std::vector<xcb_rectangle_t> shape_;
    bool shapeStale_ = false;
    bool mapped_ = false;
    bool sentMapped_ = false;
};

// The parts of a picture to show when nothing can be translucent: of what is opaque everything, of
// the rest as many of its rows as it is opaque, evenly spread, so that one sees through between
// them. Row by row, from the top.
void cutOut(const QImage& picture, std::vector<xcb_rectangle_t>& cut);

} // namespace vantrel::x11
