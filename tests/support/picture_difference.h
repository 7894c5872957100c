#pragma once

#include <QImage>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace vantrel {

// How far two pictures differ, in the most different channel of the most different pixel.
inline int difference(const QImage& a, const QImage& b) {
    EXPECT_EQ(a.size(), b.size());
    int most = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = reinterpret_cast<const QRgb*>(a.constScanLine(y))[x];
            const QRgb q = reinterpret_cast<const QRgb*>(b.constScanLine(y))[x];
            most = std::max({most, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                             std::abs(qBlue(p) - qBlue(q)), std::abs(qAlpha(p) - qAlpha(q))});
        }
    }
    return most;
}

} // namespace vantrel
