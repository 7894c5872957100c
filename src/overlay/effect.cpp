#include "overlay/effect.h"

#include <algorithm>

namespace vantrel {

namespace {

QColor rgb(double red, double green, double blue) {
    return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green),
                            static_cast<float>(blue));
}

// With a share of the colour's own opacity.
QColor faded(QColor color, double share) {
    color.setAlphaF(static_cast<float>(std::clamp(color.alphaF() * share, 0.0, 1.0)));
    return color;
}

// The laser's halo, in diameters of its dot.
double haloFactor(GlowStrength strength) {
    switch (strength) {
    case GlowStrength::low:
        return 2.5;
    case GlowStrength::medium:
        return 4.0;
    case GlowStrength::high:
        return 6.0;
    }
    return 4.0;
}

Disc plainDisc(double diameter, const QColor& color) {
    return {.diameter = diameter, .stops = {{0, color}}};
}

Disc glow(double diameter, const QColor& color) {
    return {.diameter = diameter,
            .stops = {{0, color}, {0.45, faded(color, 0.35)}, {1, faded(color, 0)}}};
}

Disc laserDot(double diameter, const QColor& color) {
    const auto pale = [](float component) { return 0.9 + 0.1 * static_cast<double>(component); };
    return {.diameter = diameter,
            .stops = {{0, rgb(pale(color.redF()), pale(color.greenF()), pale(color.blueF()))},
                      {0.25, color},
                      {0.65, color},
                      {0.9, faded(color, 0.45)},
                      {1, faded(color, 0)}}};
}

std::vector<Disc> ringDiscs(double diameter, const QColor& color) {
    const double outerWidth = std::clamp(0.025 * diameter, 1.5, 3.0);
    const double innerWidth = std::clamp(0.025 * diameter, 1.5, 2.0);
    return {{.diameter = std::clamp(0.2 * diameter, 8.0, 16.0),
             .lineWidth = innerWidth,
             .stops = {{0, faded(color, 0.75)}}},
            {.diameter = diameter, .lineWidth = outerWidth, .stops = {{0, color}}}};
}

std::vector<Disc> highlightDiscs(const HighlightSettings& highlight) {
    const QColor color = faded(toQColor(highlight.color), highlight.opacity);
    switch (highlight.style) {
    case HighlightStyle::filled:
        return {plainDisc(highlight.diameter, color)};
    case HighlightStyle::ring:
        return ringDiscs(highlight.diameter, color);
    case HighlightStyle::glow:
        return {glow(highlight.diameter, color)};
    }
    return {};
}

std::vector<Disc> laserDiscs(const LaserSettings& laser) {
    const QColor color = toQColor(laser.color);
    return {glow(laser.diameter * haloFactor(laser.glow), faded(color, 0.35)),
            laserDot(laser.diameter, color),
            plainDisc(0.18 * laser.diameter, faded(Qt::white, 0.85))};
}

Effect highlightEffect(const HighlightSettings& highlight, const ClickSettings& click) {
    Effect effect{.discs = highlightDiscs(highlight)};
    if (click.style != ClickStyle::none) {
        // In full colour, whatever the opacity of the highlight is.
        const auto ring = clickRing(click.style, toQColor(highlight.color));
        effect.left = click.left ? std::optional(ring) : std::nullopt;
        effect.right = click.right ? std::optional(ring) : std::nullopt;
    }
    if (highlight.idleHide) {
        effect.hideAfter = highlight.idleSeconds;
    }
    return effect;
}

} // namespace

Effect effectOf(CursorMode mode, const AppPreferences& preferences) {
    switch (mode) {
    case CursorMode::off:
        return {};
    case CursorMode::highlight:
        return highlightEffect(preferences.highlight, preferences.click);
    case CursorMode::laser:
        return {.discs = laserDiscs(preferences.laser)};
    }
    return {};
}

ClickRing clickRing(ClickStyle style, const QColor& color) {
    if (style == ClickStyle::pulse) {
        return {.duration = 0.22,
                .lineWidth = 6,
                .startDiameter = 64,
                .endDiameter = 64 * 1.18,
                .startOpacity = 0.8,
                .color = color};
    }
    return {.duration = 0.3,
            .lineWidth = 3,
            .startDiameter = 16,
            .endDiameter = 80,
            .startOpacity = 0.8,
            .color = color};
}

QColor toQColor(const EffectColor& color) {
    const auto component = [](double value) { return std::clamp(value, 0.0, 1.0); };
    return rgb(component(color.red), component(color.green), component(color.blue));
}

} // namespace vantrel
