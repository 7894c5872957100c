#include "platform/x11/overlay_windows.h"

#include <algorithm>

namespace vantrel::x11 {

namespace {

// Windows that wait beside one for each display: clicks that follow each other quickly.
constexpr std::size_t spareWindows = 2;

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

    bool upload(SpriteId sprite, const QImage& picture) override;
    void redraw(SpriteId sprite, const QImage& picture, const QRect& area) override;
    void place(SpriteId sprite, QPoint topLeft) override;
    void hide(SpriteId sprite) override;
    void remove(SpriteId sprite) override;
    [[nodiscard]] SpriteWindow* windowOf(SpriteId sprite) const;

    X11OverlayWindows& owner_;
    Screen screen_;
    QRect pixels_; // of the root window
    Layer* root_ = nullptr;
    SpriteScene scene_;
    std::vector<Sprite> sprites_;
};

X11OverlayWindow::X11OverlayWindow(X11OverlayWindows& owner, const Screen& screen)
    : owner_(owner),
      screen_(screen),
      pixels_(owner.screens_.pixelsOf(screen)),
      scene_(pixels_.size(), screen.backingScale) {
    owner_.windows_.push_back(this);
    owner_.prepareWindows();
    owner_.stack_.setShown(true);
}

X11OverlayWindow::~X11OverlayWindow() {
    std::erase(owner_.windows_, this);
    for (const auto& sprite : sprites_) {
        owner_.stack_.release(*sprite.window);
    }
    // Nothing may be sent for a long time from here on.
    if (owner_.windows_.empty()) {
        owner_.stack_.setShown(false);
        xcb_flush(owner_.connection_.xcb());
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

bool X11OverlayWindow::upload(SpriteId sprite, const QImage& picture) {
    auto* window = windowOf(sprite);
    if (window == nullptr) {
        window = owner_.stack_.acquire();
        if (window == nullptr) {
            return false;
        }
        sprites_.push_back({sprite, window});
    }
    window->setPicture(picture);
    return true;
}

void X11OverlayWindow::redraw(SpriteId sprite, const QImage& picture, const QRect& area) {
    if (auto* window = windowOf(sprite)) {
        window->redraw(picture, area);
    }
}

void X11OverlayWindow::place(SpriteId sprite, QPoint topLeft) {
    if (auto* window = windowOf(sprite)) {
        window->place(pixels_.topLeft() + topLeft, pixels_);
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
    compositingChanged();
}

std::unique_ptr<OverlayWindow> X11OverlayWindows::create(const Screen& screen) {
    return std::make_unique<X11OverlayWindow>(*this, screen);
}

void X11OverlayWindows::flush() {
    const double mediaTime = clock_.mediaTime();
    for (auto* window : windows_) {
        window->update(mediaTime);
    }
    xcb_flush(connection_.xcb());
}

void X11OverlayWindows::compositingChanged() {
    for (auto* window : windows_) {
        window->forgetSprites();
    }
    const bool blends = compositing_.active() && connection_.argbVisual() != 0;
    stack_.setKind(blends ? SpriteKind::translucent : SpriteKind::shaped);
    prepareWindows();
    flush();
}

// A new window takes a wait for the server. So the windows are there before anything shows, and
// stay while nothing does.
void X11OverlayWindows::prepareWindows() {
    stack_.prepare(std::max(windows_.size(), screens_.list().size()) + spareWindows);
}

} // namespace vantrel::x11
