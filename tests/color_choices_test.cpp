#include "components_fixture.h"
#include "ui/components/choice_button.h"
#include "ui/components/color_choices.h"
#include "ui/components/color_well.h"

#include <QColorDialog>

namespace vantrel {
namespace {

using ColorChoicesTest = ViewTest;

TEST_F(ColorChoicesTest, ColoursAreNamedByTheSixPresets) {
    const char* const english[] = {"Yellow", "Green", "Blue", "Red", "Purple", "White"};
    const char* const chinese[] = {"黄色", "绿色", "蓝色", "红色", "紫色", "白色"};
    const auto presets = EffectColor::presets();
    for (std::size_t i = 0; i < presets.size(); ++i) {
        EXPECT_EQ(colorName(presets[i]).english, english[i]);
        EXPECT_EQ(colorName(presets[i]).chinese, chinese[i]);
        EXPECT_FALSE(isCustom(presets[i], Palette::highlight));
    }
    const auto almostBlue = EffectColor::fromRgb(0x0A84FE);
    EXPECT_EQ(colorName(almostBlue).english, "Custom color");
    EXPECT_EQ(colorName(almostBlue).chinese, "自定义颜色");
    EXPECT_TRUE(isCustom(almostBlue, Palette::highlight));
}

TEST_F(ColorChoicesTest, OnlyTheColourInUseIsSelected) {
    show(colorChoices(view, highlightColor(), Palette::highlight));
    change([](auto& preferences) { preferences.highlight.color = EffectColor::fromRgb(0x0A84FF); });
    EXPECT_EQ(checked(), std::vector<std::string>{"Blue"});
    change([](auto& preferences) { preferences.highlight.color = EffectColor::fromRgb(0x0A84FE); });
    EXPECT_EQ(checked(), std::vector<std::string>{"Custom color"});
}

TEST_F(ColorChoicesTest, TheLaserOffersThreeColours) {
    show(colorChoices(view, laserColor(), Palette::laser));
    EXPECT_EQ(parts<ChoiceButton>().size(), 3U);
    EXPECT_EQ(checked(), std::vector<std::string>{"Red"});
    const auto yellow = EffectColor::fromRgb(0xFACC15);
    change([&](auto& preferences) { preferences.laser.color = yellow; });
    EXPECT_EQ(checked(), std::vector<std::string>{"Custom color"});
    EXPECT_EQ(colorName(yellow).english, "Yellow");
}

TEST_F(ColorChoicesTest, AWhiteSwatchHasABlackTick) {
    show(colorChoices(view, highlightColor(), Palette::highlight));
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
    auto* well = new CustomColorWell(view, highlightColor(), Text{"Custom color", "自定义颜色"});
    show(well);
    well->click();
    ASSERT_NE(well->dialog(), nullptr);
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

TEST_F(ColorChoicesTest, CancellingTheDialogBringsTheOldColourBack) {
    auto* well = new CustomColorWell(view, laserColor(), Text{"Custom color", "自定义颜色"});
    show(well);
    const auto before = preferences().laser.color;
    well->click();
    well->dialog()->setCurrentColor(QColor(1, 2, 3));
    EXPECT_EQ(preferences().laser.color, EffectColor::fromRgb(0x010203));
    well->dialog()->reject();
    update();
    EXPECT_EQ(preferences().laser.color, before);
    EXPECT_EQ(well->color(), QColor(0xFF, 0x45, 0x3A));
}

TEST_F(ColorChoicesTest, TheDialogGoesOnWhenItsWellIsGone) {
    auto* well = new CustomColorWell(view, laserColor(), Text{"Custom color", "自定义颜色"});
    show(well);
    well->click();
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
