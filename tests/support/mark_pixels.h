#pragma once

#include "overlay/effect_drawing.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cstdlib>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace vantrel::desktop {

// The largest difference of a picture from what the reference painter makes of the effect around
// that pixel, over black, as far as the picture goes: in pixels on an edge, and in all others.
struct Differences {
    int onEdges = 0;
    int elsewhere = 0;

    // As near as two painters come to each other.
    [[nodiscard]] bool areSlight() const { return elsewhere <= 6 && onEdges <= 60; }
};

inline std::ostream& operator<<(std::ostream& out, const Differences& differences) {
    return out << "differs by " << differences.elsewhere << ", on edges by " << differences.onEdges;
}

inline Differences differences(const QImage& picture, QPoint center, const Effect& effect,
                               double scale) {
    const int half = static_cast<int>(effect.diameter() * scale / 2) + 6;
    QImage wanted(2 * half, 2 * half, QImage::Format_RGB32);
    wanted.fill(Qt::black);
    QPainter painter(&wanted);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    EffectDrawing::drawDiscs(painter, QPointF(half, half) / scale, effect);
    painter.end();
    const QPoint corner = center - QPoint(half, half);
    const auto distance = [](QRgb one, QRgb other) {
        return std::max({std::abs(qRed(one) - qRed(other)), std::abs(qGreen(one) - qGreen(other)),
                         std::abs(qBlue(one) - qBlue(other))});
    };
    Differences found;
    for (int y = 1; y < wanted.height() - 1; ++y) {
        for (int x = 1; x < wanted.width() - 1; ++x) {
            const QPoint place = corner + QPoint(x, y);
            if (!picture.rect().contains(place)) {
                continue;
            }
            const QRgb pixel = wanted.pixel(x, y);
            bool onEdge = false;
            for (const QPoint neighbour : {QPoint{-1, 0}, {1, 0}, {0, -1}, {0, 1}}) {
                onEdge = onEdge || distance(pixel, wanted.pixel(QPoint{x, y} + neighbour)) > 20;
            }
            int& most = onEdge ? found.onEdges : found.elsewhere;
            most = std::max(most, distance(pixel, picture.pixel(place)));
        }
    }
    return found;
}

// Easily seen.
inline AppPreferences strongly() {
    AppPreferences preferences;
    preferences.highlight.opacity = 0.9;
    return preferences;
}

// What a mark may look like.
struct Look {
    std::string name;
    CursorMode mode;
    AppPreferences preferences;

    [[nodiscard]] Effect effect() const { return effectOf(mode, preferences); }
};

inline std::vector<Look> everyLook() {
    std::vector<Look> looks;
    for (const auto& [name, style] :
         {std::pair{"filled", HighlightStyle::filled}, std::pair{"ring", HighlightStyle::ring},
          std::pair{"glow", HighlightStyle::glow}}) {
        auto preferences = strongly();
        preferences.highlight.style = style;
        looks.push_back({name, CursorMode::highlight, preferences});
    }
    looks.push_back({"laser", CursorMode::laser, strongly()});
    return looks;
}

inline const ClickRing slowRing{.duration = 6,
                                .lineWidth = 4,
                                .startDiameter = 16,
                                .endDiameter = 80,
                                .startOpacity = 0.8,
                                .color = Qt::red};

inline const ClickRing slowPulse{.duration = 6,
                                 .lineWidth = 6,
                                 .startDiameter = 64,
                                 .endDiameter = 64 * 1.18,
                                 .startOpacity = 0.8,
                                 .color = Qt::red};

// Whether a red ring around that pixel, over black, has faded for a while, and has grown as far.
inline bool showsPartOf(const ClickRing& ring, const QImage& picture, QPoint center, double scale) {
    int first = 0;
    int last = 0;
    for (int x = 1; x < (ring.endDiameter / 2 + 8) * scale; ++x) {
        if (qRed(picture.pixel(center + QPoint(x, 0))) > 10) {
            first = first > 0 ? first : x;
            last = x;
        }
    }
    const int red = qRed(picture.pixel(center + QPoint((first + last) / 2, 0)));
    const double progress = 1 - red / (255 * ring.startOpacity);
    const double wanted = ring.startDiameter + (ring.endDiameter - ring.startDiameter) * progress;
    return progress > 0.3 && progress < 0.7 && std::abs((first + last + 1) / scale - wanted) < 1.5;
}

} // namespace vantrel::desktop
