#pragma once

#include "platform/effect.h"
#include "platform/layers/layer.h"

namespace vantrel {

// A click's ring around the middle of the layer while it plays, and nothing before and afterwards.
class RingLayer final : public Layer {
public:
    // From a media time on.
    RingLayer(const ClickRing& ring, double beginTime);

    [[nodiscard]] bool isAnimated() const override { return true; }
    [[nodiscard]] bool showsAt(double mediaTime) const override;
    // Takes no memory, so that it can run in every frame.
    [[nodiscard]] QRect paintInto(QImage& picture, QPointF middle, double scale,
                                  double mediaTime) const override;

private:
    [[nodiscard]] double progressAt(double mediaTime) const {
        return (mediaTime - beginTime_) / ring_.duration;
    }

    const ClickRing ring_;
    const double beginTime_;
};

// From a progress of 0 at the start to one of 1 at the end, in the painter's coordinates.
void paintRing(QPainter& painter, QPointF center, const ClickRing& ring, double progress);

} // namespace vantrel
