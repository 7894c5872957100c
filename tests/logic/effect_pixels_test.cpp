#include "overlay/overlay_window_manager.h"
#include "overlay/preview_canvas.h"
#include "support/headless_fixture.h"
#include "support/offscreen_application.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace vantrel {
namespace {

// How far two pictures differ, in the most different channel of the most different pixel.
int difference(const QImage& a, const QImage& b) {
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

class NoCursor final : public CursorImages {
    [[nodiscard]] CursorImage arrow(double /*scale*/) const override { return {}; }
};

// An overlay with the pointer in its middle, and a preview of the same size.
class EffectPixelsTest : public HeadlessTest {
protected:
    void build(double scale) {
        manager.reset();
        desktop.screens.set({screen(1, {0, 0, 200, 200}, 60, scale)});
        desktop.pointer.place = {100, 100};
        manager = std::make_unique<OverlayWindowManager>(desktop);
        manager->apply(mode, preferences);
        canvas.emplace(desktop.clock, cursor);
        canvas->resize(200, 200);
        auto clear = canvas->palette();
        clear.setColor(QPalette::Base, Qt::transparent);
        canvas->setPalette(clear);
        canvas->setPreferences(preferences);
        canvas->setLaser(mode == CursorMode::laser);
        scale_ = scale;
    }
    QImage preview() {
        QImage picture(QSize(200, 200) * scale_, QImage::Format_ARGB32_Premultiplied);
        picture.setDevicePixelRatio(scale_);
        picture.fill(Qt::transparent);
        canvas->render(&picture, {}, {}, {});
        return picture;
    }
    // What is sent to the screen, what is painted in the preview, and what the layers mean. The
    // edge of a ring on the screen is only about right.
    void expectAgreement(std::string_view what, double number, int tolerance = 2) {
        const auto tree = window().picture(desktop.clock.mediaTime());
        EXPECT_LE(difference(window().screenshot(), tree), tolerance)
            << what << " " << number << " at " << scale_;
        EXPECT_LE(difference(preview(), tree), 2) << what << " " << number << " at " << scale_;
    }
    void TearDown() override {
        manager.reset();
        HeadlessTest::TearDown();
    }
    headless::OverlayWindow& window(std::size_t i = 0) {
        return *desktop.overlayWindows.windows()[i];
    }
    // The colour that is shown just right of so many points from the pointer, which has no alpha
    // where nothing is shown.
    QColor at(double points) {
        const auto picture = window().screenshot();
        const int center = static_cast<int>(100 * scale_);
        return picture.pixelColor(center + static_cast<int>(points * scale_), center);
    }
    // Radii, in points to half a pixel, at which the picture becomes visible or invisible on the
    // way from the pointer to the right.
    std::vector<double> edges() {
        std::vector<double> found;
        const auto picture = window().screenshot();
        const int center = static_cast<int>(100 * scale_);
        bool visible = picture.pixelColor(center, center).alpha() > 0;
        int strongest = 0;
        for (int x = center; x < picture.width(); ++x) {
            strongest = std::max(strongest, picture.pixelColor(x, center).alpha());
        }
        for (int x = center; x < picture.width(); ++x) {
            const bool now = picture.pixelColor(x, center).alpha() * 2 > strongest;
            if (now != visible) {
                found.push_back((x - center) / scale_);
            }
            visible = now;
        }
        return found;
    }

    CursorMode mode = CursorMode::highlight;
    AppPreferences preferences;
    std::unique_ptr<OverlayWindowManager> manager;
    NoCursor cursor;
    std::optional<PreviewCanvas> canvas;

private:
    double scale_ = 1;
};

TEST_F(EffectPixelsTest, AFilledDiscHasItsColourOpacityAndDiameter) {
    for (const double scale : {1.0, 1.5, 2.0}) {
        build(scale);
        EXPECT_NEAR(at(0).red(), 250, 2);
        EXPECT_NEAR(at(0).green(), 204, 2);
        EXPECT_NEAR(at(0).blue(), 21, 2);
        EXPECT_EQ(at(0).alpha(), 89);
        EXPECT_EQ(at(30).alpha(), 89);
        ASSERT_EQ(edges().size(), 1U);
        EXPECT_NEAR(edges()[0], 32, 1 / scale);
    }
}

TEST_F(EffectPixelsTest, ARingHasTwoLinesOfTheirWidths) {
    struct Case {
        double diameter, outerWidth, innerWidth, inner;
    };
    preferences.highlight.style = HighlightStyle::ring;
    preferences.highlight.opacity = 0.9;
    for (const auto& [diameter, outerWidth, innerWidth, inner] :
         {Case{24, 1.5, 1.5, 8}, Case{64, 1.6, 1.6, 12.8}, Case{120, 3, 2, 16}}) {
        preferences.highlight.diameter = diameter;
        build(8);
        const auto radii = edges();
        ASSERT_EQ(radii.size(), 4U) << diameter;
        EXPECT_NEAR(radii[0], inner / 2 - innerWidth, 0.2);
        EXPECT_NEAR(radii[1], inner / 2, 0.2);
        EXPECT_NEAR(radii[2], diameter / 2 - outerWidth, 0.2);
        EXPECT_NEAR(radii[3], diameter / 2, 0.2);
        EXPECT_NEAR(at((inner - innerWidth) / 2).alpha(), 0.675 * 255, 2);
        EXPECT_NEAR(at((diameter - outerWidth) / 2).alpha(), 0.9 * 255, 2);
    }
}

TEST_F(EffectPixelsTest, AGlowFallsTowardsItsEdge) {
    preferences.highlight.style = HighlightStyle::glow;
    build(2);
    EXPECT_NEAR(at(0).alpha(), 0.35 * 255, 2);
    EXPECT_NEAR(at(0.45 * 32).alpha(), 0.1225 * 255, 2);
    EXPECT_LE(at(31.5).alpha(), 2);
    EXPECT_EQ(at(32.5).alpha(), 0);
}

TEST_F(EffectPixelsTest, ALaserHasACoreADotAndAHaloOfItsStrength) {
    mode = CursorMode::laser;
    const std::pair<GlowStrength, double> halos[] = {
        {GlowStrength::low, 30}, {GlowStrength::medium, 48}, {GlowStrength::high, 72}};
    for (const auto& [strength, halo] : halos) {
        preferences.laser.glow = strength;
        build(4);
        // White at 0.85 over the pale centre of the dot.
        EXPECT_NEAR(at(0).green(), 255 * (0.85 + 0.15 * (0.9 + 0.1 * 69 / 255)), 4);
        EXPECT_EQ(at(0).alpha(), 255);
        // The plain colour of the dot; beyond the dot only the halo is left.
        EXPECT_EQ(at(0.5 * 6).rgba(), qRgba(255, 69, 58, 255));
        const double share = 6.5 / (halo / 2);
        const double expected =
            share < 0.45 ? 1 - 0.65 * share / 0.45 : 0.35 * (1 - (share - 0.45) / 0.55);
        EXPECT_NEAR(at(6.5).alpha(), 0.35 * 255 * expected, 3) << halo;
        EXPECT_GT(at(halo / 2 - 1.5).alpha(), 0);
        EXPECT_EQ(at(halo / 2 + 0.5).alpha(), 0);
    }
}

TEST_F(EffectPixelsTest, TheScreenAndThePreviewShowWhatTheLayersMean) {
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
        mode = CursorMode::highlight;
        for (const auto style : allCases<HighlightStyle>()) {
            for (const double diameter : {24.0, 47.3, 120.0}) {
                preferences.highlight.style = style;
                preferences.highlight.diameter = diameter;
                build(scale);
                expectAgreement(nameOf(style), diameter);
            }
        }
        for (const auto style : {ClickStyle::ripple, ClickStyle::pulse}) {
            preferences.click.style = style;
            build(scale);
            manager->addClick({60, 72}, MouseButton::left);
            canvas->playClick({60, 128}, MouseButton::left);
            for (const double later : {0.0, 0.05, 0.15, 1.0}) {
                desktop.frame(later);
                expectAgreement(nameOf(style), later, 36);
            }
        }
        mode = CursorMode::laser;
        for (const auto glow : allCases<GlowStrength>()) {
            for (const double diameter : {7.0, 12.0, 13.0, 24.0}) {
                preferences.laser.glow = glow;
                preferences.laser.diameter = diameter;
                build(scale);
                expectAgreement(nameOf(glow), diameter);
            }
        }
    }
}

TEST_F(EffectPixelsTest, ClickRingsGrowAndFadeEvenly) {
    struct Case {
        ClickStyle style;
        double age, diameter, lineWidth, opacity;
    };
    const Case cases[] = {
        {ClickStyle::ripple, 0, 16, 3, 0.8},      {ClickStyle::ripple, 0.15, 48, 3, 0.4},
        {ClickStyle::ripple, 0.225, 64, 3, 0.2},  {ClickStyle::pulse, 0, 64, 6, 0.8},
        {ClickStyle::pulse, 0.11, 69.76, 6, 0.4},
    };
    preferences.highlight.idleHide = true;
    preferences.highlight.idleSeconds = 0;
    for (const auto& [style, age, diameter, lineWidth, opacity] : cases) {
        preferences.click.style = style;
        build(2);
        manager->addClick({100, 100}, MouseButton::left);
        desktop.frame(age);
        const auto radii = edges();
        ASSERT_EQ(radii.size(), 2U) << diameter;
        EXPECT_NEAR(radii[0], (diameter - lineWidth) / 2, 0.6);
        EXPECT_NEAR(radii[1], (diameter + lineWidth) / 2, 0.6);
        EXPECT_NEAR(at(diameter / 2 - 0.5).red(), 250, 2);
        EXPECT_NEAR(at(diameter / 2 - 0.5).green(), 204, 2);
        EXPECT_NEAR(at(diameter / 2 - 0.5).alpha(), opacity * 255, 3);
    }
}

TEST_F(EffectPixelsTest, AClickAcrossABorderIsWhole) {
    build(1);
    desktop.screens.set({screen(1, {0, 0, 100, 200}), screen(2, {100, 20, 100, 200})});
    preferences.highlight.opacity = 0.9;
    manager->apply(mode, preferences);
    manager->addClick({100, 100}, MouseButton::left);
    desktop.frame(0.15);
    const auto left = window(0).screenshot();
    const auto right = window(1).screenshot();
    for (int y = 0; y < 180; ++y) {
        for (int x = 0; x < 100; ++x) {
            // The whole is symmetric about the border.
            EXPECT_NEAR(left.pixelColor(99 - x, y).alpha(), right.pixelColor(x, y + 20).alpha(), 2)
                << x << " " << y;
        }
    }
    EXPECT_GT(left.pixelColor(76, 100).alpha(), 60);
}

// Whatever was shown before, and whichever one setting changed.
TEST_F(EffectPixelsTest, AChangeLooksLikeAFreshStart) {
    std::vector<std::pair<CursorMode, AppPreferences>> looks;
    const auto add = [&](CursorMode shown, auto change) {
        looks.emplace_back(shown, AppPreferences());
        change(looks.back().second);
    };
    for (const auto style : allCases<HighlightStyle>()) {
        add(CursorMode::highlight, [&](auto& p) { p.highlight.style = style; });
    }
    add(CursorMode::highlight, [](auto& p) { p.highlight.diameter = 100; });
    add(CursorMode::highlight, [](auto& p) { p.highlight.color = EffectColor::presets()[2]; });
    add(CursorMode::laser, [](auto&) {});
    add(CursorMode::laser, [](auto& p) { p.laser.glow = GlowStrength::high; });
    add(CursorMode::laser, [](auto& p) { p.laser.color = EffectColor::presets()[1]; });
    std::vector<QImage> fresh;
    for (const auto& look : looks) {
        std::tie(mode, preferences) = look;
        build(1);
        fresh.push_back(window().screenshot());
    }
    for (const auto& before : looks) {
        for (std::size_t i = 0; i < looks.size(); ++i) {
            manager->apply(before.first, before.second);
            manager->apply(looks[i].first, looks[i].second);
            EXPECT_EQ(difference(window().screenshot(), fresh[i]), 0) << i;
        }
    }
}

// The dot's stops, and a white core up to 0.09 of its diameter.
TEST_F(EffectPixelsTest, TheLasersDotFallsTowardsItsEdge) {
    mode = CursorMode::laser;
    preferences.laser.diameter = 24;
    build(4);
    EXPECT_GT(at(0.08 * 24).green(), 200);
    EXPECT_LT(at(0.11 * 24).green(), 190);
    EXPECT_EQ(at(0.63 * 12).alpha(), 255);
    const auto dotOverHalo = [](double dot, double halo) { return dot + (1 - dot) * halo; };
    EXPECT_NEAR(at(0.775 * 12).alpha(), 255 * dotOverHalo(0.725, 0.35 * (1 - 0.65 * 0.194 / 0.45)),
                4);
    EXPECT_NEAR(at(0.9 * 12).alpha(), 255 * dotOverHalo(0.45, 0.35 * (1 - 0.65 * 0.225 / 0.45)), 8);
}

TEST_F(EffectPixelsTest, AClickGoesOnInWindowsThatAreMadeMeanwhileAndLiesAboveTheDisc) {
    preferences.highlight.diameter = 24;
    build(1);
    manager->addClick({100, 100}, MouseButton::left);
    desktop.frame(0.15);
    const auto before = window().screenshot();
    manager->rebuild();
    EXPECT_EQ(difference(window().screenshot(), before), 0);
    // Another one shows nothing of the first.
    manager->addClick({150, 50}, MouseButton::left);
    desktop.frame(0);
    EXPECT_LE(difference(window().screenshot(), window().picture(desktop.clock.mediaTime())), 36);
}

} // namespace
} // namespace vantrel
