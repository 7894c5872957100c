#include "platform/layers/layer.h"

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

std::uint64_t nextId() {
    static std::uint64_t last = 0;
    return ++last;
}

Rect mixed(const Rect& from, const Rect& to, double progress) {
    return {std::lerp(from.x, to.x, progress), std::lerp(from.y, to.y, progress),
            std::lerp(from.width, to.width, progress), std::lerp(from.height, to.height, progress)};
}

} // namespace

Layer::Layer() : id_(nextId()) {}

Layer::~Layer() {
    removeFromSuperlayer();
    for (auto* layer : sublayers_) {
        layer->superlayer_ = nullptr;
    }
}

void Layer::setBounds(const Rect& bounds) {
    assign(bounds_, bounds);
}

void Layer::setPosition(Point position) {
    if (position_ == position) {
        return;
    }
    position_ = position;
    if (superlayer_ != nullptr) {
        superlayer_->changed();
    }
}

Rect Layer::frame() const {
    return {position_.x - bounds_.width / 2, position_.y - bounds_.height / 2, bounds_.width,
            bounds_.height};
}

void Layer::setFrame(const Rect& frame) {
    setBounds({0, 0, frame.width, frame.height});
    setPosition(frame.center());
}

void Layer::setHidden(bool hidden) {
    if (hidden_ == hidden) {
        return;
    }
    hidden_ = hidden;
    if (superlayer_ != nullptr) {
        superlayer_->changed();
    }
}

void Layer::setContents(Contents contents) {
    contents_ = std::move(contents);
    changed();
}

void Layer::setOpacity(double opacity) {
    assign(opacity_, opacity);
}

void Layer::setMasksToBounds(bool masks) {
    assign(masksToBounds_, masks);
}

void Layer::addSublayer(Layer& layer) {
    layer.removeFromSuperlayer();
    layer.superlayer_ = this;
    sublayers_.push_back(&layer);
    changed();
}

void Layer::removeFromSuperlayer() {
    if (superlayer_ == nullptr) {
        return;
    }
    std::erase(superlayer_->sublayers_, this);
    superlayer_->changed();
    superlayer_ = nullptr;
}

void Layer::changed() {
    for (auto* layer = this; layer != nullptr; layer = layer->superlayer_) {
        ++layer->revision_;
    }
}

void ShapeLayer::setPath(std::optional<Rect> path) {
    if (path_ != path) {
        path_ = path;
        changed();
    }
}

void ShapeLayer::setStrokeColor(const QColor& color) {
    if (strokeColor_ != color) {
        strokeColor_ = color;
        changed();
    }
}

void ShapeLayer::setLineWidth(double width) {
    if (!(lineWidth_ == width)) {
        lineWidth_ = width;
        changed();
    }
}

void ShapeLayer::setAnimation(const ShapeAnimation& animation) {
    animation_ = animation;
    changed();
}

bool ShapeLayer::isAnimatingAt(double mediaTime) const {
    return animation_ && mediaTime >= animation_->beginTime &&
           mediaTime < animation_->beginTime + animation_->duration;
}

std::optional<ShapeState> ShapeLayer::stateAt(double mediaTime) const {
    if (isAnimatingAt(mediaTime)) {
        const auto& [from, to, begin, duration] = *animation_;
        const double progress = (mediaTime - begin) / duration;
        return ShapeState{mixed(from.ellipse, to.ellipse, progress),
                          std::lerp(from.opacity, to.opacity, progress)};
    }
    if (!path_) {
        return std::nullopt;
    }
    return ShapeState{*path_, opacity()};
}

} // namespace vantrel
