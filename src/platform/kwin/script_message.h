#pragma once

#include "platform/effect.h"

#include <QImage>
#include <QString>

#include <functional>
#include <vector>

namespace vantrel {

// An effect as the script takes it: JSON, in which the discs are a square picture for each scale of
// a display. That has some points to spare, and half of it is a whole number of pixels at every
// quarter of a scale.
[[nodiscard]] QString
scriptMessage(const Effect& effect, const std::vector<double>& scales,
              const std::function<QImage(const Effect&, int side, double pixelsPerPoint)>& paint);

} // namespace vantrel
