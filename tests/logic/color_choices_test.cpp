#include "overlay/effect_drawing.h"
#include "support/views_fixture.h"
#include "ui/components/choice_button.h"
#include "ui/components/color_choices.h"
#include "ui/components/color_well.h"
#include "ui/components/toolkit_language.h"

#include <QColorDialog>
#include <QDialogButtonBox>

namespace vantrel {
namespace {

class ColorChoicesTest : public ViewsTest {
protected:
    // A well whose dialog is open.
    CustomColorWell* openWell(const Binding<EffectColor>& color) {
        auto* well = new CustomColorWell(view, color, Text{"Custom color", "自定义颜色"});
        show(well);
        well->click();
        return well;
    }
};

TEST_F(ColorChoicesTest, OnlyTheColourInUseIsSelectedAndItsNameIsThatOfThePreset) {
    struct Case {
        std::uint32_t rgb;
        Text name;
        const char* ofHighlight;
        const char* ofLaser;
    };
    const Text custom{"Custom color", "自定义颜色"};
    const Case cases[] = {
        {0x0A84FF, {"Blue", "蓝色"}, "Blue", "Blue"},
        {0x0A84FE, custom, "Custom color", "Custom color"},
        {0xFACC15, {"Yellow", "黄色"}, "Yellow", "Custom color"},
        {0xFFFFFF, {"White", "白色"}, "White", "Custom color"},
        {0xFF453A, {"Red", "红色"}, "Red", "Red"},
    };
    for (const auto palette : {Palette::highlight, Palette::laser}) {
        const bool laser = palette == Palette::laser;
        const auto bound = laser ? laserColor() : highlightColor();
        auto* choices = new ColorChoices(view, bound, palette);
        show(choices);
        EXPECT_EQ(parts<ChoiceButton>().size(), laser ? 3U : 6U);
        for (const auto& [rgb, name, ofHighlight, ofLaser] : cases) {
            const auto color = EffectColor::fromRgb(rgb);
            bound.set(color);
            update();
            const std::string selected = laser ? ofLaser : ofHighlight;
            EXPECT_EQ(checked(), std::vector{selected});
            EXPECT_EQ(choices->isCustom(), selected == custom.english);
            EXPECT_EQ(colorName(color).english, name.english);
            EXPECT_EQ(colorName(color).chinese, name.chinese);
        }
    }
}

TEST_F(ColorChoicesTest, TheWellOfACustomColourHasABadgeOverItsEdge) {
    auto* well = new CustomColorWell(view, laserColor(), Text{"Custom color", "自定义颜色"});
    show(row(0, {row(0, {well}), spacer()})->padded(20));
    const auto pixel = [&](int right, int y) {
        update();
        const auto place = well->mapTo(window.get(), QPoint(46 + right, 17 + y));
        return window->grab().toImage().pixelColor(place * window->devicePixelRatio());
    };
    const auto beside = pixel(1, -10);
    well->setChecked(true);
    EXPECT_GT(pixel(1, -10).blue() - pixel(1, -10).red(), 60);
    EXPECT_EQ(pixel(4, -10), beside);
    well->setChecked(false);
    EXPECT_EQ(pixel(1, -10), beside);
}

TEST_F(ColorChoicesTest, AWhiteSwatchHasABlackTick) {
    show(new ColorChoices(view, highlightColor(), Palette::highlight));
    const auto darkest = [&](const char* name) {
        auto* swatch = named<QAbstractButton>(name);
        swatch->click();
        update();
        const auto disc = swatch->grab().toImage().copy(9, 9, 16, 16);
        int value = 255;
        for (int i = 0; i < 16 * 16; ++i) {
            value = std::min(value, disc.pixelColor(i % 16, i / 16).value());
        }
        return value;
    };
    EXPECT_LT(darkest("White"), 60);
    EXPECT_GT(darkest("Yellow"), 240);
}

TEST_F(ColorChoicesTest, WhatIsPickedInTheDialogIsNotWrittenBackIntoTheWell) {
    auto* well = openWell(highlightColor());
    ASSERT_NE(well->dialog(), nullptr);
    const auto tint = [](const QPalette& palette) {
        return palette.color(QPalette::Active, QPalette::Highlight);
    };
    EXPECT_EQ(tint(well->dialog()->palette()), tint(window->palette()));
    EXPECT_NE(tint(well->dialog()->palette()), tint(QApplication::palette()));
    // A grey keeps the hue that the user is at only in the picked colour itself.
    const auto grey = QColor::fromHsv(200, 0, 128);
    EXPECT_EQ(assignments([&] {
                  Q_EMIT well->dialog()->currentColorChanged(grey);
                  update();
              }),
              1);
    EXPECT_EQ(preferences().highlight.color, EffectColor::fromRgb(0x808080));
    EXPECT_EQ(well->color(), grey);
    EXPECT_EQ(well->color().hsvHue(), 200);

    change([](auto& preferences) { preferences.highlight.color = EffectColor::fromRgb(0xFF453A); });
    EXPECT_EQ(well->color(), QColor(0xFF, 0x45, 0x3A));
    EXPECT_EQ(well->dialog()->currentColor(), QColor(0xFF, 0x45, 0x3A));
    EXPECT_EQ(preferences().highlight.color, EffectColor::fromRgb(0xFF453A));
}

TEST_F(ColorChoicesTest, CancellingTheDialogBringsBackWhatWasLastChosenElsewhere) {
    auto* well = openWell(laserColor());
    well->dialog()->reject();
    const auto before = preferences().laser.color;
    const auto choose = [&](EffectColor color) {
        state.changePreferences([&](auto& preferences) { preferences.laser.color = color; });
    };
    const auto pick = [&] { well->dialog()->setCurrentColor(QColor(1, 2, 3)); };
    const auto green = EffectColor::fromRgb(0x34C759);
    const std::pair<std::function<void()>, EffectColor> cases[] = {
        {[] {}, before},
        {[&] { pick(); }, before},
        {[&] { choose(green); }, green},
        {[&] { pick(), choose(green); }, green},
        {[&] { pick(), choose(green), pick(); }, green},
        {[&] { pick(), choose(green), choose(before); }, before},
    };
    for (const auto& [meanwhile, left] : cases) {
        choose(before);
        update();
        well->click();
        meanwhile();
        well->dialog()->reject();
        update();
        EXPECT_EQ(preferences().laser.color, left);
        EXPECT_EQ(well->color(), toQColor(left));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

TEST_F(ColorChoicesTest, TheDialogSpeaksTheLanguageOfTheInterface) {
    const ToolkitLanguage toolkit(view);
    auto* well = openWell(laserColor());
    const auto cancel = [&] {
        const auto* buttons = well->dialog()->findChild<QDialogButtonBox*>();
        return buttons->button(QDialogButtonBox::Cancel)->text();
    };
    change([](auto& preferences) { preferences.language = AppLanguage::chinese; });
    update();
    EXPECT_EQ(well->dialog()->windowTitle(), QStringLiteral("自定义颜色"));
    EXPECT_TRUE(cancel().contains(QStringLiteral("取消")));
    change([](auto& preferences) { preferences.language = AppLanguage::english; });
    update();
    EXPECT_EQ(well->dialog()->windowTitle(), QStringLiteral("Custom color"));
    EXPECT_TRUE(cancel().contains(QStringLiteral("Cancel")));
}

TEST_F(ColorChoicesTest, TheDialogGoesOnWhenItsWellIsGone) {
    auto* well = openWell(laserColor());
    const QPointer dialog = well->dialog();
    window.reset();
    ASSERT_NE(dialog, nullptr);
    dialog->setCurrentColor(QColor(4, 5, 6));
    EXPECT_EQ(preferences().laser.color, EffectColor::fromRgb(0x040506));
    dialog->accept();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(dialog, nullptr);
}

TEST_F(ColorChoicesTest, AColourThatIsNoneIsReplaced) {
    CustomColorWell::Coordinator coordinator{laserColor(), std::nullopt};
    coordinator.colorChanged(QColor());
    EXPECT_EQ(preferences().laser.color, (EffectColor{1, 0.8, 0}));
}

} // namespace
} // namespace vantrel
