#include "platform/wayland/overlay_windows.h"

#include "platform/layers/sprite_scene.h"
#include "platform/wayland/listener.h"
#include "platform/wayland/sprite_surface.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <wayland-client.h>
#include <wayland-layer-shell.h>
#include <wayland-viewporter.h>

namespace vantrel::wayland {

namespace {

DisplayArea areaOf(const Screen& screen) {
    return {QSize(static_cast<int>(screen.frame.width), static_cast<int>(screen.frame.height)),
            screen.backingScale};
}

QSize pixelsOf(const DisplayArea& area) {
    return {static_cast<int>(std::lround(area.points.width() * area.scale)),
            static_cast<int>(std::lround(area.points.height() * area.scale))};
}

} // namespace

class WaylandOverlayWindow final : public OverlayWindow, private SpriteSink {
public:
    WaylandOverlayWindow(WaylandOverlayWindows& owner, const Screen& screen);
    ~WaylandOverlayWindow() override;
    WaylandOverlayWindow(const WaylandOverlayWindow&) = delete;
    WaylandOverlayWindow& operator=(const WaylandOverlayWindow&) = delete;

    [[nodiscard]] GlobalRect frame() const override { return screen_.frame; }
    void setRootLayer(Layer& layer) override { root_ = &layer; }
    // It is on top of the uppermost layer from the moment in which it is first shown.
    void orderFront() override {}

    void update(double mediaTime);

private:
    struct Sprite {
        SpriteId id = 0;
        std::unique_ptr<SpriteSurface> surface;
    };

    void makeSurface(wl_output& output);
    void configure(std::uint32_t serial, std::uint32_t width, std::uint32_t height);
    void close();
    void askForFrame();
    void noteFrame(std::uint32_t time);
    bool upload(SpriteId sprite, const QImage& picture, const QRect& changed) override;
    void place(SpriteId sprite, QPoint topLeft) override;
    void hide(SpriteId sprite) override;
    void remove(SpriteId sprite) override;
    [[nodiscard]] SpriteSurface* surfaceOf(SpriteId sprite) const;

    WaylandOverlayWindows& owner_;
    Screen screen_;
    Layer* root_ = nullptr;
    SpriteScene scene_;
    // Null once the compositor has taken it away, as with its display.
    Handle<wl_surface> surface_;
    Handle<wp_viewport> viewport_;
    Handle<zwlr_layer_surface_v1> layerSurface_;
    Handle<wl_callback> frame_; // while one was asked for
    std::vector<Sprite> sprites_;
    bool changed_ = false;
};

WaylandOverlayWindow::WaylandOverlayWindow(WaylandOverlayWindows& owner, const Screen& screen)
    : owner_(owner), screen_(screen), scene_(pixelsOf(areaOf(screen)), screen.backingScale) {
    owner_.windows_.push_back(this);
    if (auto* output = owner_.screens_.output(screen); output != nullptr && owner_.clear_) {
        makeSurface(*output);
    }
}

WaylandOverlayWindow::~WaylandOverlayWindow() {
    std::erase(owner_.windows_, this);
    close();
    // Nothing may be sent for a long time from here on.
    owner_.connection_.flush();
}

void WaylandOverlayWindow::makeSurface(wl_output& output) {
    const auto& connection = owner_.connection_;
    surface_.reset(wl_compositor_create_surface(connection.compositor()));
    viewport_.reset(wp_viewporter_get_viewport(connection.viewporter(), surface_.get()));
    letClicksThrough(connection, *surface_);
    layerSurface_.reset(
        zwlr_layer_shell_v1_get_layer_surface(connection.layerShell(), surface_.get(), &output,
                                              ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "vantrel"));
    static constexpr zwlr_layer_surface_v1_listener listener{
        .configure = relay<&WaylandOverlayWindow::configure, zwlr_layer_surface_v1>,
        .closed = relay<&WaylandOverlayWindow::close, zwlr_layer_surface_v1>,
    };
    zwlr_layer_surface_v1_add_listener(layerSurface_.get(), &listener, this);
    zwlr_layer_surface_v1_set_anchor(layerSurface_.get(), ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP |
                                                              ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
                                                              ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT |
                                                              ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT);
    constexpr int overPanels = -1;
    zwlr_layer_surface_v1_set_exclusive_zone(layerSurface_.get(), overPanels);
    wl_surface_commit(surface_.get());
}

void WaylandOverlayWindow::configure(std::uint32_t serial, std::uint32_t width,
                                     std::uint32_t height) {
    zwlr_layer_surface_v1_ack_configure(layerSurface_.get(), serial);
    wl_surface_attach(surface_.get(), owner_.clear_->use(), 0, 0);
    wl_surface_damage_buffer(surface_.get(), 0, 0, 1, 1);
    wp_viewport_set_destination(viewport_.get(), static_cast<std::int32_t>(width),
                                static_cast<std::int32_t>(height));
    wl_surface_commit(surface_.get());
}

void WaylandOverlayWindow::close() {
    sprites_.clear();
    frame_.reset();
    layerSurface_.reset();
    viewport_.reset();
    surface_.reset();
}

void WaylandOverlayWindow::update(double mediaTime) {
    if (root_ == nullptr || !surface_) {
        return;
    }
    scene_.update(*root_, mediaTime, *this);
    bool changed = std::exchange(changed_, false);
    for (const auto& sprite : sprites_) {
        changed = sprite.surface->commit() || changed;
    }
    if (changed) {
        askForFrame();
        wl_surface_commit(surface_.get());
    }
}

void WaylandOverlayWindow::askForFrame() {
    if (frame_ || !owner_.pace_ || owner_.pace_->screen != screen_.id) {
        return;
    }
    static constexpr wl_callback_listener listener{
        .done = relay<&WaylandOverlayWindow::noteFrame, wl_callback>,
    };
    frame_.reset(wl_surface_frame(surface_.get()));
    owner_.connection_.tellFramesOf(frame_.get());
    wl_callback_add_listener(frame_.get(), &listener, this);
}

void WaylandOverlayWindow::noteFrame(std::uint32_t /*time*/) {
    frame_.reset();
    owner_.frameCame_ = true;
}

SpriteSurface* WaylandOverlayWindow::surfaceOf(SpriteId sprite) const {
    const auto found = std::ranges::find(sprites_, sprite, &Sprite::id);
    return found == sprites_.end() ? nullptr : found->surface.get();
}

bool WaylandOverlayWindow::upload(SpriteId sprite, const QImage& picture, const QRect& changed) {
    auto* surface = surfaceOf(sprite);
    if (surface == nullptr) {
        sprites_.push_back({sprite, std::make_unique<SpriteSurface>(owner_.connection_, *surface_,
                                                                    areaOf(screen_))});
        surface = sprites_.back().surface.get();
    }
    return surface->setPicture(picture, changed);
}

void WaylandOverlayWindow::place(SpriteId sprite, QPoint topLeft) {
    if (auto* surface = surfaceOf(sprite)) {
        surface->place(topLeft);
    }
}

void WaylandOverlayWindow::hide(SpriteId sprite) {
    if (auto* surface = surfaceOf(sprite)) {
        surface->hide();
    }
}

void WaylandOverlayWindow::remove(SpriteId sprite) {
    changed_ =
        std::erase_if(sprites_, [sprite](const Sprite& entry) { return entry.id == sprite; }) > 0 ||
        changed_;
}

WaylandOverlayWindows::WaylandOverlayWindows(Connection& connection, const WaylandScreens& screens,
                                             const Clock& clock)
    : connection_(connection),
      screens_(screens),
      clock_(clock),
      clear_(SharedPicture::make(connection.shm(), {1, 1})),
      events_(connection.addHandler(*this)) {}

std::unique_ptr<OverlayWindow> WaylandOverlayWindows::create(const Screen& screen) {
    return std::make_unique<WaylandOverlayWindow>(*this, screen);
}

void WaylandOverlayWindows::flush() {
    const double mediaTime = clock_.mediaTime();
    for (auto* window : windows_) {
        window->update(mediaTime);
    }
    connection_.flush();
}

Subscription WaylandOverlayWindows::onFrame(std::uint32_t screen, std::function<void()> callback) {
    pace_ = Pace{screen, std::make_shared<const std::function<void()>>(std::move(callback))};
    return Subscription([this] { pace_.reset(); });
}

void WaylandOverlayWindows::eventsDrained() {
    if (std::exchange(frameCame_, false) && pace_) {
        const auto callback = pace_->callback;
        (*callback)();
    }
}

} // namespace vantrel::wayland
