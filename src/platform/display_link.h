#pragma once

#include "platform/screens.h"

#include <functional>
#include <memory>

namespace vantrel {

// Frames for each second.
struct FrameRateRange {
    float minimum = 0;
    float maximum = 0;
    float preferred = 0;

    bool operator==(const FrameRateRange&) const = default;
};

// Calls its target once for each frame of a display, until it is destroyed.
class DisplayLink {
public:
    virtual ~DisplayLink() = default;
};

class DisplayLinks {
public:
    virtual ~DisplayLinks() = default;

    [[nodiscard]] virtual std::unique_ptr<DisplayLink>
    create(const Screen& screen, FrameRateRange range, std::function<void()> target) = 0;
};

} // namespace vantrel
