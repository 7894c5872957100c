#pragma once

#include "bench_desktop.h"
#include "comparison.h"

#include <random>

namespace vantrel::bench {

// Pauses that are not in step with anybody's frames.
class Pause {
public:
    void take();

private:
    std::mt19937 random_{11};
};

// Milliseconds from injected motion to the first changed pixel, again and again, within a part of
// the screen where the bare desktop shows. The pointer is marked already.
[[nodiscard]] Samples motionLatencies(BenchDesktop& desktop, int count,
                                      const desktop::PixelRect& within = {100, 100, 1720, 880});

} // namespace vantrel::bench
