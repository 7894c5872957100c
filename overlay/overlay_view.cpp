#include "overlay/overlay_view.h"

#include "overlay/effect_drawing.h"
#include "overlay/effect_geometry.h"

#include <algorithm>

namespace vantrel {

namespace {

Rect box(double side) {
    return {0, 0, side, side};
}

Rect centeredIn(double side, double diameter) {
    return {(side - diameter) / 2, (side - diameter) / 2, diameter, diameter};
}

ShapeAnimation clickAnimation(const ClickAnimation& click, double begin) {
    const auto& geometry = ClickGeometry::of(click.style);
    return {
        .from = {centeredIn(clickBoxSide, geometry.startDiameter), clickOpacity},
        .to = {centeredIn(clickBoxSide, geometry.endDiameter), 0},
        .beginTime = begin,
        .duration = geometry.duration,
    };
}

} // namespace

OverlayView::OverlayView(const Rect& frame) {
    rootLayer_.setFrame(frame);
    rootLayer_.setMasksToBounds(true);
    for (auto* layer : {&glowLayer_, &middleGlowLayer_, static_cast<Layer*>(&innerRingLayer_),
                        static_cast<Layer*>(&shapeLayer_)}) {
        cursorLayer_.addSublayer(*layer);
    }
    rootLayer_.addSublayer(cursorLayer_);
}

OverlayView::~OverlayView() = default;

void OverlayView::configure(CursorMode mode, const AppPreferences& preferences) {
    if (mode == CursorMode::laser) {
        const auto& laser = preferences.laser;
        const double side = laser.diameter * glowFactor(laser.glow);
        prepare(side);
        configureLaser(laser, side);
    } else {
        prepare(preferences.highlight.diameter);
        configureHighlight(preferences.highlight);
    }
}

void OverlayView::prepare(double side) {
    cursorLayer_.setBounds(box(side));
    shapeLayer_.setFrame(box(side));
    shapeLayer_.setFillColor({});
    shapeLayer_.setStrokeColor({});
    for (auto* layer : {&glowLayer_, &middleGlowLayer_, static_cast<Layer*>(&innerRingLayer_)}) {
        layer->setHidden(true);
    }
}

void OverlayView::configureLaser(const LaserSettings& laser, double side) {
    const QColor color = toQColor(laser.color);
    showGlow(withAlpha(color, haloOpacity), side);

    middleGlowLayer_.setHidden(false);
    middleGlowLayer_.setFrame(centeredIn(side, laser.diameter));
    middleGlowLayer_.setContents([color](QPainter& painter, const QRectF& rect) {
        EffectDrawing::drawLaserDot(painter, color, rect);
    });

    shapeLayer_.setPath(centeredIn(side, coreFactor * laser.diameter));
    shapeLayer_.setFillColor(withAlpha(Qt::white, coreOpacity));
}

void OverlayView::configureHighlight(const HighlightSettings& highlight) {
    const QColor color = withAlpha(toQColor(highlight.color), highlight.opacity);
    switch (highlight.style) {
    case HighlightStyle::filled:
        shapeLayer_.setPath(box(highlight.diameter));
        shapeLayer_.setFillColor(color);
        break;
    case HighlightStyle::ring:
        showRing(color, highlight.diameter);
        break;
    case HighlightStyle::glow:
        shapeLayer_.setPath(std::nullopt);
        showGlow(color, highlight.diameter);
        break;
    }
}

void OverlayView::showRing(const QColor& color, double diameter) {
    const auto ring = RingGeometry::forDiameter(diameter);
    shapeLayer_.setPath(ring.outer);
    shapeLayer_.setStrokeColor(color);
    shapeLayer_.setLineWidth(ring.outerLineWidth);

    innerRingLayer_.setHidden(false);
    innerRingLayer_.setFrame(box(diameter));
    innerRingLayer_.setPath(ring.inner);
    innerRingLayer_.setStrokeColor(
        withAlpha(color, static_cast<double>(color.alphaF()) * innerRingOpacity));
    innerRingLayer_.setLineWidth(ring.innerLineWidth);
}

void OverlayView::showGlow(const QColor& color, double side) {
    glowLayer_.setHidden(false);
    glowLayer_.setFrame(box(side));
    glowLayer_.setContents([color](QPainter& painter, const QRectF& rect) {
        EffectDrawing::drawGlow(painter, color, rect);
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
    const auto animation = clickAnimation(click, mediaTime - std::max(0.0, now - click.started));
    auto layer = std::make_unique<ShapeLayer>();
    layer->setBounds(box(clickBoxSide));
    layer->setPosition(toLocal(click.point, window_->frame().origin()));
    layer->setStrokeColor(click.color);
    layer->setLineWidth(ClickGeometry::of(click.style).lineWidth);
    layer->setPath(animation.to.ellipse);
    layer->setOpacity(animation.to.opacity);
    layer->setAnimation(animation);
    rootLayer_.addSublayer(*layer);
    clickLayers_.emplace(click.id, std::move(layer));
}

} // namespace vantrel
