#include "platform/wayland/sprite_surface.h"

#include <algorithm>
#include <utility>

#include <wayland-client.h>
#include <wayland-viewporter.h>

namespace vantrel::wayland {

void letClicksThrough(const Connection& connection, wl_surface& surface) {
    auto* nothing = wl_compositor_create_region(connection.compositor());
    wl_surface_set_input_region(&surface, nothing);
    wl_region_destroy(nothing);
}

SpriteSurface::SpriteSurface(const Connection& connection, wl_surface& parent,
                             const DisplayArea& display)
    : connection_(connection),
      display_(display),
      margin_(spriteMargin(display.scale)),
      surface_(wl_compositor_create_surface(connection.compositor())),
      subsurface_(
          wl_subcompositor_get_subsurface(connection.subcompositor(), surface_.get(), &parent)),
      viewport_(wp_viewporter_get_viewport(connection.viewporter(), surface_.get())) {
    letClicksThrough(connection, *surface_);
}

bool SpriteSurface::setPicture(const QImage& picture, const QRect& changed) {
    auto* free = freePicture(picture.size().grownBy({margin_, margin_, margin_, margin_}));
    if (free == nullptr) {
        return false;
    }
    picture_ = free;
    picture_->write(picture, {margin_, margin_});
    damage_ = size_ == picture.size() ? damage_.united(changed.translated(margin_, margin_))
                                      : QRect({0, 0}, picture_->size());
    size_ = picture.size();
    return true;
}

SharedPicture* SpriteSurface::freePicture(QSize size) {
    // Not the one that shows: there may be no memory for another.
    std::erase_if(pictures_, [&](const auto& picture) {
        return picture->isFree() && picture->size() != size && picture.get() != picture_;
    });
    const auto found = std::ranges::find_if(pictures_, [size](const auto& picture) {
        return picture->isFree() && picture->size() == size;
    });
    if (found != pictures_.end()) {
        return found->get();
    }
    auto made = SharedPicture::make(connection_.shm(), size);
    return made ? pictures_.emplace_back(std::move(made)).get() : nullptr;
}

bool SpriteSurface::commit() {
    const auto cut = place_ && picture_ != nullptr
                         ? cutAt(*place_, size_, display_.points, display_.scale)
                         : std::nullopt;
    if (!cut) {
        return unmap();
    }
    if (cut == sent_ && damage_.isEmpty()) {
        return false;
    }
    const bool moves = sent_ && cut->source == sent_->source && damage_.isEmpty();
    if (!sent_ || !damage_.isEmpty()) {
        attach();
    }
    send(*cut);
    if (!moves) {
        wl_surface_commit(surface_.get());
    }
    return true;
}

bool SpriteSurface::unmap() {
    if (!std::exchange(sent_, std::nullopt)) {
        return false;
    }
    wl_surface_attach(surface_.get(), nullptr, 0, 0);
    wl_surface_commit(surface_.get());
    return true;
}

void SpriteSurface::attach() {
    const QRect damage = sent_ ? damage_ : QRect({0, 0}, picture_->size());
    damage_ = {};
    wl_surface_attach(surface_.get(), picture_->use(), 0, 0);
    wl_surface_damage_buffer(surface_.get(), damage.x(), damage.y(), damage.width(),
                             damage.height());
}

void SpriteSurface::send(const SpriteCut& cut) {
    if (!sent_ || sent_->points.topLeft() != cut.points.topLeft()) {
        wl_subsurface_set_position(subsurface_.get(), cut.points.x(), cut.points.y());
    }
    if (!sent_ || sent_->source != cut.source) {
        const QRect source = cut.source.translated(margin_, margin_);
        wp_viewport_set_source(viewport_.get(), wl_fixed_from_int(source.x()),
                               wl_fixed_from_int(source.y()), wl_fixed_from_int(source.width()),
                               wl_fixed_from_int(source.height()));
        wp_viewport_set_destination(viewport_.get(), cut.points.width(), cut.points.height());
    }
    sent_ = cut;
}

} // namespace vantrel::wayland
