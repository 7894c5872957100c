#include "platform/x11/sprite_window.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include <xcb/shape.h>

namespace vantrel::x11 {

namespace {

// Far from every root window, and still a coordinate that the protocol can carry.
constexpr QPoint parkingPlace(-20000, -20000);

constexpr std::uint32_t neverBypassCompositor = 2;

xcb_rectangle_t toX(const QRect& rect) {
    return {static_cast<std::int16_t>(rect.x()), static_cast<std::int16_t>(rect.y()),
            static_cast<std::uint16_t>(rect.width()), static_cast<std::uint16_t>(rect.height())};
}

QRect fromX(const xcb_rectangle_t& rect) {
    return {rect.x, rect.y, rect.width, rect.height};
}

// Without its transparency, in the format of a root window of that depth.
QImage opaque(QImage image, std::uint8_t depth) {
    image.reinterpretAsFormat(QImage::Format_RGB32);
    switch (depth) {
    case 16:
        return image.convertToFormat(QImage::Format_RGB16);
    case 30:
        return image.convertToFormat(QImage::Format_RGB30);
    default:
        return image;
    }
}

// How opaque a pixel of a row has to be, from 1 to 255. Each follows the last at the golden section
// of the range, which spreads any share of the rows evenly.
int rowThreshold(int y) {
    constexpr int goldenSection = 158;
    return 1 + y * goldenSection % 255;
}

} // namespace

void cutOut(const QImage& picture, std::vector<xcb_rectangle_t>& cut) {
    cut.clear();
    for (int y = 0; y < picture.height(); ++y) {
        const int threshold = rowThreshold(y);
        const auto* row = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        int start = -1;
        for (int x = 0; x <= picture.width(); ++x) {
            const bool inside = x < picture.width() && qAlpha(row[x]) >= threshold;
            if (inside && start < 0) {
                start = x;
            } else if (!inside && start >= 0) {
                cut.push_back(toX(QRect(start, y, x - start, 1)));
                start = -1;
            }
        }
    }
}

ImageWriter::ImageWriter(Connection& connection, std::uint8_t depth)
    : connection_(connection), depth_(depth), gc_(connection.xcb()) {
    auto* xcb = connection_.xcb();
    const PixmapHandle sample(xcb);
    xcb_create_pixmap(xcb, depth_, sample.id(), connection_.root(), 1, 1);
    xcb_create_gc(xcb, gc_.id(), sample.id(), 0, nullptr);
}

void ImageWriter::put(xcb_drawable_t drawable, const QImage& picture, const QRect& area) {
    constexpr std::size_t requestHead = 32;
    const auto pixelBytes = static_cast<std::size_t>(picture.depth()) / 8;
    const auto usedBytes = static_cast<std::size_t>(area.width()) * pixelBytes;
    const auto rowBytes = (usedBytes + 3) / 4 * 4;
    // Nothing, once the connection is lost.
    const auto longestRequest = std::size_t{xcb_get_maximum_request_length(connection_.xcb())} * 4;
    const auto longest = std::max(longestRequest, requestHead) - requestHead;
    const int rowsAtOnce = static_cast<int>(std::max(longest / rowBytes, std::size_t{1}));
    for (int top = area.top(); top <= area.bottom(); top += rowsAtOnce) {
        const int rows = std::min(rowsAtOnce, area.bottom() + 1 - top);
        rows_.resize(rowBytes * static_cast<std::size_t>(rows));
        auto out = rows_.begin();
        for (int y = top; y < top + rows; ++y) {
            const auto offset = static_cast<std::size_t>(area.left()) * pixelBytes;
            std::copy_n(picture.constScanLine(y) + offset, usedBytes, out);
            out += static_cast<std::ptrdiff_t>(rowBytes);
        }
        xcb_put_image(connection_.xcb(), XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, gc_.id(),
                      static_cast<std::uint16_t>(area.width()), static_cast<std::uint16_t>(rows),
                      static_cast<std::int16_t>(area.left()), static_cast<std::int16_t>(top), 0,
                      depth_, static_cast<std::uint32_t>(rows_.size()), rows_.data());
    }
}

SpriteResources::SpriteResources(Connection& connection, SpriteKind kind)
    : connection_(connection),
      kind_(kind),
      visual_(kind == SpriteKind::translucent ? connection.argbVisual()
                                              : connection.screen().root_visual),
      colormap_(connection.xcb()),
      writer_(connection,
              kind == SpriteKind::translucent ? std::uint8_t{32} : connection.screen().root_depth) {
    xcb_create_colormap(connection.xcb(), XCB_COLORMAP_ALLOC_NONE, colormap_.id(),
                        connection.root(), visual_);
}

SpriteWindow::SpriteWindow(SpriteResources& resources)
    : resources_(resources), window_(resources.connection().xcb()) {
    auto& connection = resources.connection();
    constexpr std::uint32_t mask =
        XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_COLORMAP;
    const std::array<std::uint32_t, 4> values{0, 0, 1, resources.colormap()};
    xcb_create_window(connection.xcb(), resources.writer().depth(), id(), connection.root(),
                      static_cast<std::int16_t>(parkingPlace.x()),
                      static_cast<std::int16_t>(parkingPlace.y()), 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, resources.visual(), mask, values.data());
    letClicksThrough();
    setProperties();
}

void SpriteWindow::letClicksThrough() {
    clicksThrough_ = xcb_shape_rectangles_checked(resources_.connection().xcb(), XCB_SHAPE_SO_SET,
                                                  XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
                                                  id(), 0, 0, 0, nullptr);
}

// An overlay that takes clicks is worse than none, so this is waited for.
bool SpriteWindow::letsClicksThrough() {
    if (clicksThrough_) {
        const Owned<xcb_generic_error_t> error(
            xcb_request_check(resources_.connection().xcb(), *clicksThrough_));
        clicksThrough_.reset();
        return !error;
    }
    return true;
}

void SpriteWindow::setProperties() {
    auto& connection = resources_.connection();
    const auto set = [&](xcb_atom_t property, xcb_atom_t type, std::uint8_t format,
                         std::uint32_t count, const void* data) {
        xcb_change_property(connection.xcb(), XCB_PROP_MODE_REPLACE, id(), property, type, format,
                            count, data);
    };
    // What follows the pointer while something is dragged gets neither shadow nor animation.
    const xcb_atom_t type = connection.atom(Atom::windowTypeDnd);
    const std::uint32_t noShadow = 0;
    constexpr std::string_view name = "Vantrel";
    constexpr std::string_view windowClass("vantrel\0Vantrel\0", 16);
    set(connection.atom(Atom::windowType), XCB_ATOM_ATOM, 32, 1, &type);
    set(connection.atom(Atom::bypassCompositor), XCB_ATOM_CARDINAL, 32, 1, &neverBypassCompositor);
    set(connection.atom(Atom::noShadow), XCB_ATOM_CARDINAL, 32, 1, &noShadow);
    set(connection.atom(Atom::netWmName), connection.atom(Atom::utf8String), 8, name.size(),
        name.data());
    set(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8, windowClass.size(), windowClass.data());
}

void SpriteWindow::setPicture(const QImage& picture, const QRect& changed) {
    if (changed != picture.rect() && !picture_ && resources_.kind() == SpriteKind::translucent) {
        resources_.writer().put(id(), picture, changed);
        return;
    }
    auto& connection = resources_.connection();
    size_ = picture.size();
    picture_ = PixmapHandle(connection.xcb());
    xcb_create_pixmap(connection.xcb(), resources_.writer().depth(), picture_.id(),
                      connection.root(), static_cast<std::uint16_t>(size_.width()),
                      static_cast<std::uint16_t>(size_.height()));
    if (resources_.kind() == SpriteKind::shaped) {
        auto straight = picture.convertToFormat(QImage::Format_ARGB32);
        cutOut(straight, cut_);
        shapeStale_ = true;
        const auto depth = resources_.writer().depth();
        resources_.writer().put(picture_.id(), opaque(std::move(straight), depth), picture.rect());
    } else {
        resources_.writer().put(picture_.id(), picture, picture.rect());
    }
    // The picture may be larger than the output buffer. What shows it comes in one piece after it.
    xcb_flush(connection.xcb());
}

void SpriteWindow::place(QPoint topLeft, std::span<const QRect> clip) {
    place_ = topLeft;
    clip_ = clip;
}

void SpriteWindow::park() {
    place_.reset();
}

void SpriteWindow::unmap() {
    mapped_ = false;
    if (std::exchange(sentMapped_, false)) {
        xcb_unmap_window(resources_.connection().xcb(), id());
    }
}

void SpriteWindow::raise() {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(resources_.connection().xcb(), id(), XCB_CONFIG_WINDOW_STACK_MODE, &above);
}

void SpriteWindow::stackAbove(const SpriteWindow& sibling) {
    const std::array<std::uint32_t, 2> values{sibling.id(), XCB_STACK_MODE_ABOVE};
    xcb_configure_window(resources_.connection().xcb(), id(),
                         XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, values.data());
}

void SpriteWindow::commit() {
    const bool hasPicture = static_cast<bool>(picture_);
    if (hasPicture) {
        const std::uint32_t pixmap = picture_.id();
        xcb_change_window_attributes(resources_.connection().xcb(), id(), XCB_CW_BACK_PIXMAP,
                                     &pixmap);
        picture_.reset(); // the window keeps it
    }
    findShown();
    // Nothing of it lies inside the clip.
    if (!shown_.all && shown_.parts.empty()) {
        shown_.all = true;
        place_.reset();
    }
    applyShape();
    applyPlace();
    if (mapped_ && !std::exchange(sentMapped_, true)) {
        xcb_map_window(resources_.connection().xcb(), id());
    } else if (hasPicture) {
        xcb_clear_area(resources_.connection().xcb(), 0, id(), 0, 0, 0, 0);
    }
}

void SpriteWindow::applyPlace() {
    std::array<std::uint32_t, 4> values{};
    std::size_t count = 0;
    std::uint16_t mask = 0;
    if (place_ != sentPlace_) {
        const QPoint place = place_.value_or(parkingPlace);
        values[count++] = static_cast<std::uint32_t>(place.x());
        values[count++] = static_cast<std::uint32_t>(place.y());
        mask |= XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y;
        sentPlace_ = place_;
    }
    if (size_ != sentSize_) {
        values[count++] = static_cast<std::uint32_t>(size_.width());
        values[count++] = static_cast<std::uint32_t>(size_.height());
        mask |= XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT;
        sentSize_ = size_;
    }
    if (mask != 0) {
        resources_.connection().configureUnreported(id(), mask, values.data());
    }
}

// All of it, as far as it lies on the root window, unless something else is to be cut off.
void SpriteWindow::findShown() {
    shown_.all = true;
    shown_.parts.clear();
    if (!place_) {
        return;
    }
    const auto area = [](const QRect& rect) { return std::int64_t{rect.width()} * rect.height(); };
    const QRect window(*place_, size_);
    const QRect root(QPoint(0, 0), resources_.connection().rootSize());
    std::int64_t covered = 0;
    for (const auto& rect : clip_) {
        const QRect part = window.intersected(rect);
        if (!part.isEmpty()) {
            shown_.parts.push_back(part.translated(-*place_));
            covered += area(part);
        }
    }
    shown_.all = covered == area(window.intersected(root));
    if (shown_.all) {
        shown_.parts.clear();
    }
}

void SpriteWindow::applyShape() {
    if (shown_ == sentShown_ && !shapeStale_) {
        return;
    }
    shapeStale_ = false;
    shape_.clear();
    const QRect whole(QPoint(0, 0), size_);
    const bool cut = resources_.kind() == SpriteKind::shaped;
    for (const auto& part : shown_.all ? std::span(&whole, 1) : std::span(shown_.parts)) {
        if (!cut) {
            shape_.push_back(toX(part));
            continue;
        }
        for (const auto& rect : cut_) {
            const QRect left = fromX(rect).intersected(part);
            if (!left.isEmpty()) {
                shape_.push_back(toX(left));
            }
        }
    }
    std::swap(sentShown_, shown_);
    auto* xcb = resources_.connection().xcb();
    if (sentShown_.all && !cut) {
        xcb_shape_mask(xcb, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, id(), 0, 0, XCB_NONE);
    } else {
        xcb_shape_rectangles(xcb, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                             XCB_CLIP_ORDERING_UNSORTED, id(), 0, 0,
                             static_cast<std::uint32_t>(shape_.size()), shape_.data());
    }
}

} // namespace vantrel::x11
