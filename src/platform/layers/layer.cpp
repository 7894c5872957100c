#include "platform/layers/layer.h"

#include "platform/layers/painter.h"

#include <QPainter>

#include <algorithm>

namespace vantrel {

namespace {

std::uint64_t nextId() {
    static std::uint64_t last = 0;
    return ++last;
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

void Layer::setMasksToBounds(bool masks) {
    assign(masksToBounds_, masks);
}

QRect Layer::paintInto(QImage& picture, QPointF middle, double scale, double mediaTime) const {
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(middle);
    painter.scale(scale, -scale);
    painter.translate(-bounds_.width / 2, -bounds_.height / 2);
    paintLayer(painter, *this, mediaTime);
    return picture.rect();
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

} // namespace vantrel
