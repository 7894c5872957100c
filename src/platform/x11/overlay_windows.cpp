#include "platform/x11/overlay_windows.h"

#include <algorithm>
#include <chrono>
#include <cstring>

namespace vantrel::x11 {

namespace {

// Windows that wait beside one for each display once something shows: as many clicks as are shown
// at once.
constexpr std::size_t spareWindows = 8;
// What the first picture does not need gets ready so long after it.
constexpr std::chrono::milliseconds readyingTime(50);

// What the corner of the screen shows while nothing blends. Black where the screen's pixels are not
// those of a picture in memory.
QRgb cornerColor(const Connection& connection) {
    constexpr std::uint32_t allPlanes = ~0U;
    const Owned<xcb_get_image_reply_t> image(
        xcb_get_image_reply(connection.xcb(),
                            xcb_get_image(connection.xcb(), XCB_IMAGE_FORMAT_Z_PIXMAP,
                                          connection.root(), 0, 0, 1, 1, allPlanes),
                            nullptr));
    QRgb color = 0;
    if (image && image->depth == 24 && xcb_get_image_data_length(image.get()) == sizeof color) {
        std::memcpy(&color, xcb_get_image_data(image.get()), sizeof color);
    }
    return color | 0xFF000000U;
}

} // namespace

class X11OverlayWindow final : public OverlayWindow, private SpriteSink {
public:
    X11OverlayWindow(X11OverlayWindows& owner, const Screen& screen);
    ~X11OverlayWindow() override;
    X11OverlayWindow(const X11OverlayWindow&) = delete;
    X11OverlayWindow& operator=(const X11OverlayWindow&) = delete;

    [[nodiscard]] GlobalRect frame() const override { return screen_.frame; }
    void setRootLayer(Layer& layer) override { root_ = &layer; }
    void orderFront() override { owner_.stack_.raise(); }

    void update(double mediaTime);
    void forgetSprites();

private:
    struct Sprite {
        SpriteId id = 0;
        SpriteWindow* window = nullptr;
    };

    [[nodiscard]] QImage::Format format() const override;
    bool upload(SpriteId sprite, const QImage& picture, const QRect& changed) override;
    void place(SpriteId sprite, QPoint topLeft) override;
    void hide(SpriteId sprite) override;
    void remove(SpriteId sprite) override;
    [[nodiscard]] SpriteWindow* windowOf(SpriteId sprite) const;

    X11OverlayWindows& owner_;
    Screen screen_;
    QPoint corner_;            // the top left one, in pixels of the root window
    std::vector<QRect> shown_; // the parts of the display that are this window's
    Layer* root_ = nullptr;
    SpriteScene scene_;
    std::vector<Sprite> sprites_;
};

X11OverlayWindow::X11OverlayWindow(X11OverlayWindows& owner, const Screen& screen)
    : owner_(owner),
      screen_(screen),
      corner_(owner.screens_.pixelsOf(screen).topLeft()),
      shown_(owner.screens_.partsOf(screen)),
      scene_(owner.screens_.pixelsOf(screen).size(), screen.backingScale) {
    owner_.windows_.push_back(this);
    owner_.prepareWindows();
    if (owner_.windows_.size() == 1) {
        owner_.begin();
    }
}

X11OverlayWindow::~X11OverlayWindow() {
    std::erase(owner_.windows_, this);
    // As the scene does.
    while (!sprites_.empty()) {
        remove(sprites_.back().id);
    }
    if (owner_.windows_.empty()) {
        owner_.end();
    }
}

void X11OverlayWindow::update(double mediaTime) {
    if (root_ == nullptr) {
        return;
    }
    scene_.update(*root_, mediaTime, *this);
    for (const auto& sprite : sprites_) {
        sprite.window->commit();
    }
}

void X11OverlayWindow::forgetSprites() {
    sprites_.clear();
    scene_.reset();
}

SpriteWindow* X11OverlayWindow::windowOf(SpriteId sprite) const {
    const auto found = std::ranges::find(sprites_, sprite, &Sprite::id);
    return found == sprites_.end() ? nullptr : found->window;
}

// Where nothing blends, colours are shown without their opacity.
QImage::Format X11OverlayWindow::format() const {
    return owner_.stack_.kind() == SpriteKind::shaped ? QImage::Format_RGBA64_Premultiplied
                                                      : QImage::Format_ARGB32_Premultiplied;
}

bool X11OverlayWindow::upload(SpriteId sprite, const QImage& picture, const QRect& changed) {
    auto* window = windowOf(sprite);
    if (window == nullptr) {
        window = owner_.stack_.acquire();
        if (window == nullptr) {
            return false;
        }
        sprites_.push_back({sprite, window});
    }
    window->setPicture(picture, changed);
    return true;
}

void X11OverlayWindow::place(SpriteId sprite, QPoint topLeft) {
    if (auto* window = windowOf(sprite)) {
        window->place(corner_ + topLeft, shown_);
    }
}

void X11OverlayWindow::hide(SpriteId sprite) {
    if (auto* window = windowOf(sprite)) {
        window->park();
    }
}

void X11OverlayWindow::remove(SpriteId sprite) {
    if (auto* window = windowOf(sprite)) {
        owner_.stack_.release(*window);
        std::erase_if(sprites_, [sprite](const Sprite& entry) { return entry.id == sprite; });
    }
}

X11OverlayWindows::X11OverlayWindows(Connection& connection, const X11Screens& screens,
                                     const Clock& clock)
    : connection_(connection),
      screens_(screens),
      clock_(clock),
      compositing_(connection),
      stack_(connection, clock),
      compositingChanges_(compositing_.changed.add([this] { compositingChanged(); })) {
    readying_.setSingleShot(true);
    QObject::connect(&readying_, &QTimer::timeout, &readying_, [this] {
        getReady();
        xcb_flush(connection_.xcb());
    });
    compositingChanged();
}

std::unique_ptr<OverlayWindow> X11OverlayWindows::create(const Screen& screen) {
    return std::make_unique<X11OverlayWindow>(*this, screen);
}

void X11OverlayWindows::flush() {
    compositing_.settle();
    const double mediaTime = clock_.mediaTime();
    for (auto* window : windows_) {
        // It would be seen as an opaque box.
        if (compositing_.blending() != Blending::awaited) {
            window->update(mediaTime);
        }
    }
    xcb_flush(connection_.xcb());
}

void X11OverlayWindows::begin() {
    stack_.setShown(true);
    compositing_.begin();
    readying_.start(readyingTime);
}

void X11OverlayWindows::end() {
    readying_.stop();
    if (guard_ != nullptr) {
        guard_->park();
        guard_->commit();
    }
    stack_.setShown(false);
    compositing_.end();
    // Nothing may be sent for a long time from here on.
    xcb_flush(connection_.xcb());
}

void X11OverlayWindows::compositingChanged() {
    const auto blending = compositing_.blending();
    const auto kind = blending == Blending::no ? SpriteKind::shaped : SpriteKind::translucent;
    if (kind != stack_.kind()) {
        makeSprites(kind);
    }
    if (!windows_.empty() && blending == Blending::awaited && readying_.isActive()) {
        // The guard is what the manager comes back for, and looks like what lies below until then.
        // What is mapped just when it comes back, it may forget to paint.
        setGuardColor(cornerColor(connection_));
        mapAll();
    } else if (blending == Blending::yes) {
        setGuardColor(0);
    }
    flush();
}

void X11OverlayWindows::makeSprites(SpriteKind kind) {
    for (auto* window : windows_) {
        window->forgetSprites();
    }
    stack_.setKind(kind);
    guard_ = nullptr;
    if (kind == SpriteKind::translucent) {
        guard_ = stack_.acquire();
        guardColor_ = 0;
    }
    prepareWindows();
    if (!windows_.empty()) {
        readying_.start(readyingTime);
    }
}

void X11OverlayWindows::getReady() {
    stack_.prepare(screens_.list().size() + spareWindows);
    mapAll();
}

void X11OverlayWindows::mapAll() {
    stack_.mapAll();
    if (guard_ != nullptr) {
        guard_->place(guardPlace_.topLeft(), std::span(&guardPlace_, 1));
        guard_->commit();
    }
}

void X11OverlayWindows::setGuardColor(QRgb color) {
    if (guard_ != nullptr && std::exchange(guardColor_, color) != color) {
        QImage pixel(1, 1, QImage::Format_ARGB32_Premultiplied);
        pixel.fill(color);
        guard_->setPicture(pixel, pixel.rect());
        guard_->commit();
    }
}

// A new window takes time of the server and of the compositing manager. So what the first picture
// needs is there before anything shows, and all stay while nothing does.
void X11OverlayWindows::prepareWindows() {
    stack_.prepare(screens_.list().size());
}

} // namespace vantrel::x11
