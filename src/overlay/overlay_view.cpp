#include "overlay/overlay_view.h"

#include "overlay/effect_drawing.h"

#include <algorithm>
#include <array>

namespace vantrel {

namespace {

Rect box(double side) {
    return {0, 0, side, side};
}

Rect centeredIn(double side, double diameter) {
    return {(side - diameter) / 2, (side - diameter) / 2, diameter, diameter};
}

} // namespace

OverlayView::OverlayView(const Rect& frame) {
    rootLayer_.setFrame(frame);
    rootLayer_.setMasksToBounds(true);
    for (auto* layer : {&glowLayer_, &middleGlowLayer_, &innerRingLayer_, &shapeLayer_}) {
        cursorLayer_.addSublayer(*layer);
    }
    rootLayer_.addSublayer(cursorLayer_);
}

OverlayView::~OverlayView() = default;

void OverlayView::configure(CursorMode mode, const AppPreferences& preferences) {
    const auto effect = effectOf(mode, preferences);
    const double side = effect.diameter();
    cursorLayer_.setBounds(box(side));
    for (auto* layer : cursorLayer_.sublayers()) {
        layer->setHidden(true);
    }
    const std::array layers{&glowLayer_, &middleGlowLayer_, &innerRingLayer_, &shapeLayer_};
    // Soft discs have the lower layers, from the bottom; plain ones the upper, from the top.
    auto soft = layers.begin();
    auto plain = layers.rbegin();
    for (const auto& disc : effect.discs) {
        if (disc.stops.size() > 1) {
            show(**soft++, disc, side);
        }
    }
    std::for_each(effect.discs.rbegin(), effect.discs.rend(), [&](const Disc& disc) {
        if (disc.stops.size() == 1) {
            show(**plain++, disc, side);
        }
    });
}

void OverlayView::show(Layer& layer, const Disc& disc, double side) {
    layer.setHidden(false);
    layer.setFrame(centeredIn(side, disc.diameter));
    layer.setContents([disc](QPainter& painter, const QRectF& bounds, double /*mediaTime*/) {
        EffectDrawing::drawDisc(painter, bounds.center(), disc);
    });
}

bool OverlayView::shows(const ClickAnimation& click, double now) const {
    return window_ != nullptr && click.isLive(now) && click.box().intersects(window_->frame());
}

void OverlayView::updateClicks(std::span<const ClickAnimation> clicks, double now,
                               double mediaTime) {
    std::erase_if(clickLayers_, [&](const auto& entry) {
        const auto click = std::ranges::find(clicks, entry.first, &ClickAnimation::id);
        return click == clicks.end() || !shows(*click, now);
    });
    for (const auto& click : clicks) {
        if (shows(click, now) && !clickLayers_.contains(click.id)) {
            addClick(click, now, mediaTime);
        }
    }
}

void OverlayView::addClick(const ClickAnimation& click, double now, double mediaTime) {
    auto layer =
        std::make_unique<RingLayer>(click.ring(), mediaTime - std::max(0.0, now - click.started));
    layer->setBounds(box(ClickAnimation::boxSide));
    layer->setPosition(toLocal(click.point, window_->frame().origin()));
    rootLayer_.addSublayer(*layer);
    clickLayers_.emplace(click.id, std::move(layer));
}

} // namespace vantrel
