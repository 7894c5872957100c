#include "platform/layers/sprite_scene.h"

#include "platform/layers/painter.h"

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

// Rounding errors must not cost a row of pixels.
constexpr double tolerance = 1e-6;

int pixelBelow(double value) {
    return static_cast<int>(std::floor(value + tolerance));
}

int pixelAbove(double value) {
    return static_cast<int>(std::ceil(value - tolerance));
}

// Nothing far outside of every display is told from something further away.
int roundedPixel(double value) {
    constexpr double farAway = 1 << 20;
    return static_cast<int>(std::lround(std::clamp(value, -farAway, farAway)));
}

// Whether pixels from a first one on are some of a display's.
bool meets(int first, int count, int display) {
    return first < display && first + count > 0 && count > 0;
}

} // namespace

SpriteScene::SpriteScene(QSize display, double scale) : display_(display), scale_(scale) {}

void SpriteScene::update(const Layer& root, double mediaTime, SpriteSink& sink) {
    for (const auto* layer : root.sublayers()) {
        auto& sprite = spriteOf(*layer);
        sprite.seen = true;
        updateSprite(sprite, *layer, mediaTime, sink);
    }
    removeUnseen(sink);
}

void SpriteScene::reset() {
    sprites_.clear();
}

SpriteScene::Sprite& SpriteScene::spriteOf(const Layer& layer) {
    const auto found = std::ranges::find(sprites_, layer.id(), &Sprite::id);
    if (found != sprites_.end()) {
        return *found;
    }
    sprites_.push_back({.id = layer.id()});
    return sprites_.back();
}

void SpriteScene::removeUnseen(SpriteSink& sink) {
    std::erase_if(sprites_, [&sink](Sprite& sprite) {
        const bool gone = !std::exchange(sprite.seen, false);
        if (gone) {
            sink.remove(sprite.id);
        }
        return gone;
    });
}

void SpriteScene::updateSprite(Sprite& sprite, const Layer& layer, double mediaTime,
                               SpriteSink& sink) {
    if (sprite.revision != layer.revision()) {
        sprite.revision = layer.revision();
        sprite.rendered = false;
        sprite.box = boxOf(layer, contentsBounds(layer));
    }
    const QPoint topLeft = pixelOf(layer.position()) + sprite.box.topLeft();
    if (layer.hidden() || !layer.showsAt(mediaTime) ||
        !meets(topLeft.x(), sprite.box.width(), display_.width()) ||
        !meets(topLeft.y(), sprite.box.height(), display_.height())) {
        hide(sprite, sink);
        return;
    }
    if (!sprite.rendered || (layer.isAnimated() && mediaTime - sprite.drawnAt >= minimumFrame)) {
        draw(sprite, layer, mediaTime, sink);
    }
    if (sprite.rendered && sprite.placed != topLeft) {
        sprite.placed = topLeft;
        sink.place(sprite.id, topLeft);
    }
}

QPoint SpriteScene::pixelOf(Point position) const {
    return {roundedPixel(position.x * scale_),
            roundedPixel(display_.height() - position.y * scale_)};
}

QRect SpriteScene::boxOf(const Layer& layer, const Rect& painted) const {
    const auto& bounds = layer.bounds();
    const double left = (painted.minX() - bounds.width / 2) * scale_;
    const double right = (painted.maxX() - bounds.width / 2) * scale_;
    const double top = (bounds.height / 2 - painted.maxY()) * scale_;
    const double bottom = (bounds.height / 2 - painted.minY()) * scale_;
    constexpr double half = maximumSide / 2.0;
    if (!(left < right) || !(top < bottom)) {
        return {};
    }
    return {QPoint(pixelBelow(std::max(left, -half)), pixelBelow(std::max(top, -half))),
            QPoint(pixelAbove(std::min(right, half)) - 1, pixelAbove(std::min(bottom, half)) - 1)};
}

void SpriteScene::draw(Sprite& sprite, const Layer& layer, double mediaTime, SpriteSink& sink) {
    const auto format = layer.isAnimated() ? QImage::Format_ARGB32_Premultiplied : sink.format();
    if (canvas_.size() != sprite.box.size() || canvas_.format() != format) {
        canvas_ = QImage(sprite.box.size(), format);
        canvas_.fill(Qt::transparent);
    }
    const QRect inked = layer.paintInto(canvas_, -sprite.box.topLeft(), scale_, mediaTime);
    const QRect changed = sprite.rendered ? inked.united(sprite.inked) : canvas_.rect();
    if (!changed.isEmpty()) {
        sprite.rendered = sink.upload(sprite.id, canvas_, changed);
    }
    sprite.inked = inked;
    sprite.drawnAt = mediaTime;
    if (!layer.isAnimated()) {
        canvas_ = {};
        return;
    }
    for (int y = inked.top(); y <= inked.bottom(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(canvas_.scanLine(y));
        std::fill(row + inked.left(), row + inked.right() + 1, 0);
    }
}

void SpriteScene::hide(Sprite& sprite, SpriteSink& sink) {
    if (sprite.placed) {
        sprite.placed.reset();
        sink.hide(sprite.id);
    }
}

} // namespace vantrel
