#include "platform/layers/sprite_scene.h"

#include "platform/layers/painter.h"
#include "platform/layers/ring.h"

#include <QPainter>

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

const ShapeLayer* animatedShape(const Layer& layer) {
    const auto* shape = dynamic_cast<const ShapeLayer*>(&layer);
    return shape != nullptr && shape->animation() ? shape : nullptr;
}

void clear(QImage& picture, const QRect& area) {
    for (int y = area.top(); y <= area.bottom(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        std::fill(row + area.left(), row + area.right() + 1, 0);
    }
}

QRgb premultiplied(const QColor& color, double opacity) {
    auto faded = color;
    faded.setAlphaF(color.alphaF() * static_cast<float>(opacity));
    return qPremultiply(faded.rgba());
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
        sprite.ring = animatedShape(layer);
        sprite.rendered = false;
        sprite.box =
            boxOf(layer, sprite.ring != nullptr ? layer.bounds() : paintedBounds(layer, mediaTime));
    }
    const auto* ring = sprite.ring;
    const QPoint topLeft = pixelOf(layer.position()) + sprite.box.topLeft();
    const bool over = ring != nullptr && !ring->isAnimatingAt(mediaTime);
    if (layer.hidden() || over || !meets(topLeft.x(), sprite.box.width(), display_.width()) ||
        !meets(topLeft.y(), sprite.box.height(), display_.height())) {
        hide(sprite, sink);
        return;
    }
    if (ring != nullptr) {
        drawRing(sprite, *ring, mediaTime, sink);
    } else if (!sprite.rendered) {
        render(sprite, layer, mediaTime, sink);
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

void SpriteScene::render(Sprite& sprite, const Layer& layer, double mediaTime,
                         SpriteSink& sink) const {
    QImage picture(sprite.box.size(), sink.format());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-sprite.box.topLeft());
    painter.scale(scale_, -scale_);
    painter.translate(-layer.bounds().width / 2, -layer.bounds().height / 2);
    paintLayer(painter, layer, mediaTime);
    painter.end();
    sprite.rendered = sink.upload(sprite.id, picture);
}

void SpriteScene::drawRing(Sprite& sprite, const ShapeLayer& layer, double mediaTime,
                           SpriteSink& sink) {
    if (sprite.rendered && mediaTime - sprite.drawnAt < minimumFrame) {
        return;
    }
    if (canvas_.size() != sprite.box.size()) {
        canvas_ = QImage(sprite.box.size(), QImage::Format_ARGB32_Premultiplied);
        canvas_.fill(Qt::transparent);
    }
    const auto state = layer.stateAt(mediaTime);
    const auto center = state->ellipse.center();
    const auto& bounds = layer.bounds();
    const Ring ring{
        .center = QPointF((center.x - bounds.width / 2) * scale_ - sprite.box.left(),
                          (bounds.height / 2 - center.y) * scale_ - sprite.box.top()),
        .radius = state->ellipse.width / 2 * scale_,
        .lineWidth = layer.lineWidth() * scale_,
    };
    const QRect box = ring.box().intersected(canvas_.rect());
    paintRing(canvas_, box, ring, premultiplied(layer.strokeColor(), state->opacity));
    sprite.drawnAt = mediaTime;
    if (sprite.rendered) {
        sink.redraw(sprite.id, canvas_, box.united(sprite.inked));
    } else {
        sprite.rendered = sink.upload(sprite.id, canvas_);
    }
    sprite.inked = box;
    clear(canvas_, box);
}

void SpriteScene::hide(Sprite& sprite, SpriteSink& sink) {
    if (sprite.placed) {
        sprite.placed.reset();
        sink.hide(sprite.id);
    }
}

} // namespace vantrel
