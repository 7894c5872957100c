#include "components_fixture.h"
#include "overlay/effect_drawing.h"
#include "ui/components/choice_button.h"
#include "ui/components/color_choices.h"
#include "ui/components/color_well.h"
#include "ui/components/toolkit_language.h"

#include <QColorDialog>
#include <QDialogButtonBox>

namespace vantrel {
namespace {

using ColorChoicesTest = ViewTest;

TEST_F(ColorChoicesTest, AColourIsNamedByThePresetsAndSelectedInItsPalette) {
    struct Case {
        std::uint32_t color;
        std::string english, chinese, ofHighlight, ofLaser; // what is selected in the palettes
    };
    const Case cases[] = {
        {0x0A84FF, "Blue", "蓝色", "Blue", "Blue"},
        {0xFACC15, "Yellow", "黄色", "Yellow", "Custom color"},
        {0x0A84FE, "Custom color", "自定义颜色", "Custom color", "Custom color"},
    };
    for (const auto& [rgb, english, chinese, ofHighlight, ofLaser] : cases) {
        const auto color = EffectColor::fromRgb(rgb);
        EXPECT_EQ(colorName(color).english, english);
        EXPECT_EQ(colorName(color).chinese, chinese);
        change([&](auto& preferences) { preferences.highlight.color = color; });
        show(colorChoices(view, highlightColor(), Palette::highlight));
        EXPECT_EQ(checked(), std::vector{ofHighlight});
        show(colorChoices(view, highlightColor(), Palette::laser));
        EXPECT_EQ(checked(), std::vector{ofLaser});
        EXPECT_EQ(parts<ChoiceButton>().size(), 3U);
    }
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

TEST_F(ColorChoicesTest, CancellingTheDialogBringsBackWhatWasLastChosenElsewhere) {
    auto* well = new CustomColorWell(view, laserColor(), Text{"Custom color", "自定义颜色"});
    show(well);
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
    auto* well = new CustomColorWell(view, laserColor(), Text{"Custom color", "自定义颜色"});
    show(well);
    well->click();
    const auto expect = [&](const QString& title, const QString& cancel) {
        EXPECT_EQ(well->dialog()->windowTitle(), title);
        const auto* buttons = well->dialog()->findChild<QDialogButtonBox*>();
        EXPECT_TRUE(buttons->button(QDialogButtonBox::Cancel)->text().contains(cancel));
    };
    for (const auto language : {AppLanguage::chinese, AppLanguage::english, AppLanguage::chinese}) {
        change([&](auto& preferences) { preferences.language = language; });
        change([](auto& preferences) { preferences.laser.diameter += 1; });
        language == AppLanguage::english
            ? expect(QStringLiteral("Custom color"), QStringLiteral("Cancel"))
            : expect(QStringLiteral("自定义颜色"), QStringLiteral("取消"));
    }
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
