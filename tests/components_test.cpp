#include "components_fixture.h"
#include "ui/components/buttons.h"
#include "ui/components/choice_button.h"
#include "ui/components/color_choices.h"
#include "ui/components/effect_preview.h"
#include "ui/components/highlight_choices.h"
#include "ui/components/label.h"
#include "ui/components/mode_choices.h"
#include "ui/components/pickers.h"
#include "ui/components/pictogram.h"
#include "ui/components/section_card.h"
#include "ui/components/slider.h"
#include "ui/components/stack.h"
#include "ui/components/status_badge.h"
#include "ui/components/switch_toggle.h"
#include "ui/components/value_slider.h"

#include <QAccessible>
#include <QComboBox>

namespace vantrel {
namespace {

class ComponentsTest : public ViewTest {
protected:
    QWidget* diameterSlider() {
        return valueSlider(view, Text{"Diameter", "直径"},
                           view.binding(&AppPreferences::highlight, &HighlightSettings::diameter),
                           {.low = 24, .high = 120, .suffix = "pt"});
    }
    QWidget* clickPopUp() {
        return popUpPicker(view, Text{"Click effects", "点击反馈"},
                           view.binding(&AppPreferences::click, &ClickSettings::style),
                           {{ClickStyle::none, Text{"None", "无"}},
                            {ClickStyle::ripple, Text{"Ripple", "涟漪"}},
                            {ClickStyle::pulse, Text{"Pulse", "脉冲"}}});
    }
    QWidget* glowSegments() {
        return segmentedPicker(view, Text{"Glow", "光晕"},
                               view.binding(&AppPreferences::laser, &LaserSettings::glow),
                               {{GlowStrength::low, Text{"Low", "低"}},
                                {GlowStrength::medium, Text{"Medium", "中"}},
                                {GlowStrength::high, Text{"High", "高"}}});
    }
    QWidget* idleToggle() {
        return new SwitchToggle(
            view, Text{"Hide when idle", "闲置时隐藏"},
            view.binding(&AppPreferences::highlight, &HighlightSettings::idleHide));
    }
};

TEST_F(ComponentsTest, SliderTextIsRoundedWithHalvesAwayFromZero) {
    const ValueScale percent{.low = 0.1, .high = 0.9, .suffix = "%", .percent = true};
    const ValueScale points{.low = 24, .high = 120, .suffix = "pt"};
    EXPECT_EQ(percent.text(0.355), QStringLiteral("36 %"));
    EXPECT_EQ(percent.text(0.345), QStringLiteral("35 %"));
    EXPECT_EQ(points.text(47.5), QStringLiteral("48 pt"));
    EXPECT_EQ(points.text(47.49), QStringLiteral("47 pt"));
}

TEST_F(ComponentsTest, ASliderReachesBothEndsAndFollowsTheState) {
    show(diameterSlider());
    auto* slider = named<Slider>("Diameter");
    QTest::keyClick(slider, Qt::Key_End);
    EXPECT_EQ(preferences().highlight.diameter, 120);
    QTest::keyClick(slider, Qt::Key_Home);
    EXPECT_EQ(preferences().highlight.diameter, 24);
    QTest::keyClick(slider, Qt::Key_Right);
    EXPECT_EQ(preferences().highlight.diameter, 25);
    QTest::mousePress(slider, Qt::LeftButton, {}, {slider->width() / 2, 10});
    EXPECT_NEAR(preferences().highlight.diameter, 72, 0.5);
    QTest::mouseMove(slider, {2 * slider->width(), 10});
    EXPECT_EQ(preferences().highlight.diameter, 120);
    QTest::mouseRelease(slider, Qt::LeftButton, {}, {2 * slider->width(), 10});

    EXPECT_EQ(assignments([&] {
                  change([](auto& preferences) { preferences.highlight.diameter = 47.123; });
              }),
              1);
    EXPECT_EQ(preferences().highlight.diameter, 47.123);
    EXPECT_NEAR(slider->shownValue(), 47.123, 0.01);
}

TEST_F(ComponentsTest, EachChoiceWritesThePreferencesOnce) {
    show(column(8, {highlightChoices(view, true), glowSegments(), clickPopUp(), idleToggle(),
                    diameterSlider(), colorChoices(view, highlightColor(), Palette::highlight)}));
    const auto click = [&](const char* name) {
        return assignments([&] {
            named<QAbstractButton>(name)->click();
            update();
        });
    };
    EXPECT_EQ(click("Ring"), 1);
    EXPECT_EQ(preferences().highlight.style, HighlightStyle::ring);
    EXPECT_EQ(click("High"), 1);
    EXPECT_EQ(preferences().laser.glow, GlowStrength::high);
    EXPECT_EQ(click("Green"), 1);
    EXPECT_EQ(preferences().highlight.color, EffectColor::fromRgb(0x34C759));
    EXPECT_EQ(assignments([&] {
                  QTest::mouseClick(parts<SwitchToggle>().at(0), Qt::LeftButton);
                  update();
              }),
              1);
    EXPECT_TRUE(preferences().highlight.idleHide);
    EXPECT_EQ(assignments([&] {
                  QTest::keyClick(named<QComboBox>("Click effects"), Qt::Key_Down);
                  update();
              }),
              1);
    EXPECT_EQ(preferences().click.style, ClickStyle::pulse);
    EXPECT_EQ(assignments([&] {
                  QTest::keyClick(named<Slider>("Diameter"), Qt::Key_Left);
                  update();
              }),
              1);
    EXPECT_EQ(preferences().highlight.diameter, 63);
}

TEST_F(ComponentsTest, ModeChoicesSwitchTheModeAndShowAChangeMadeElsewhere) {
    for (const bool compact : {true, false}) {
        show(modeChoices(view, compact));
        named<QAbstractButton>("Laser Pointer")->click();
        EXPECT_EQ(state.mode().get(), CursorMode::laser);
        EXPECT_EQ(named<QAbstractButton>("Off")->height(), compact ? 58 : 64);
        state.setMode(CursorMode::highlight);
        update();
        EXPECT_EQ(checked(), std::vector<std::string>{"Highlight"});
        const auto accent = window->palette().color(QPalette::Highlight);
        const auto fill = [&](const char* name) {
            return named(name)->grab().toImage().pixelColor(20, 8);
        };
        EXPECT_EQ(fill("Highlight"), accent);
        EXPECT_NE(fill("Off"), accent);
        EXPECT_NE(fill("Laser Pointer"), accent);
    }
}

TEST_F(ComponentsTest, TextsFollowTheLanguage) {
    show(column(8, {new SectionCard(view, Text{"Card", "卡片"}, idleToggle()),
                    pushButton(view, Text{"Reset", "重置"}, [] {}), glowSegments(), clickPopUp(),
                    modeChoices(view, true)}));
    const auto texts = [&] {
        QStringList all;
        for (const auto* text : window->findChildren<QLabel*>()) {
            all << text->text();
        }
        for (const auto* part : window->findChildren<QAbstractButton*>()) {
            all << part->text() << part->accessibleName();
        }
        all << window->findChild<QComboBox*>()->currentText();
        all.removeAll(QString());
        return all;
    };
    const auto isChinese = [](const QString& text) {
        return std::ranges::any_of(text, [](QChar c) { return c.script() == QChar::Script_Han; });
    };
    change([](auto& preferences) { preferences.language = AppLanguage::chinese; });
    EXPECT_GT(texts().size(), 12);
    for (const auto& text : texts()) {
        EXPECT_TRUE(isChinese(text)) << text.toStdString();
    }
    change([](auto& preferences) { preferences.language = AppLanguage::english; });
    for (const auto& text : texts()) {
        EXPECT_FALSE(isChinese(text)) << text.toStdString();
    }
}

TEST_F(ComponentsTest, AScreenReaderIsToldWhatEachPartIs) {
    auto* preview = effectPreview(view, Text{"Local preview", "局部预览"}, {});
    show(column(8, {modeChoices(view, true), highlightChoices(view, true), diameterSlider(),
                    idleToggle(), preview,
                    actionRow(view, Text{"Privacy", "隐私说明"}, "hand.raised",
                              Text{"What stays here", "留在本机"}, [] {})}));
    const auto interface = [](QWidget* part) {
        return QAccessible::queryAccessibleInterface(part);
    };
    struct Case {
        const char* name;
        QAccessible::Role role;
        bool checked;
    };
    const Case cases[] = {
        {"Mode", QAccessible::Grouping, false},
        {"Off", QAccessible::RadioButton, true},
        {"Laser Pointer", QAccessible::RadioButton, false},
        {"Filled", QAccessible::RadioButton, true},
        {"Ring", QAccessible::RadioButton, false},
        {"Diameter", QAccessible::Slider, false},
        {"Local preview", QAccessible::Graphic, false},
        {"Privacy", QAccessible::Button, false},
    };
    for (const auto& [name, role, checked] : cases) {
        auto* told = interface(named(name));
        EXPECT_EQ(told->text(QAccessible::Name), QString::fromUtf8(name));
        EXPECT_EQ(told->role(), role) << name;
        EXPECT_EQ(told->state().checked, checked) << name;
    }
    auto* toggle = interface(parts<SwitchToggle>().at(0));
    EXPECT_EQ(toggle->role(), QAccessible::CheckBox);
    EXPECT_EQ(toggle->text(QAccessible::Name), QStringLiteral("Hide when idle"));
    EXPECT_EQ(interface(named("Privacy"))->text(QAccessible::Description),
              QStringLiteral("What stays here"));

    auto* diameter = interface(named("Diameter"));
    EXPECT_EQ(diameter->text(QAccessible::Value), QStringLiteral("64 pt"));
    EXPECT_EQ(diameter->valueInterface()->currentValue(), 64);
    EXPECT_EQ(diameter->valueInterface()->minimumValue(), 24);
    EXPECT_EQ(diameter->valueInterface()->maximumValue(), 120);
    diameter->valueInterface()->setCurrentValue(80);
    EXPECT_EQ(preferences().highlight.diameter, 80);

    // A button's face says nothing of its own.
    auto* filled = interface(named("Filled"));
    ASSERT_EQ(filled->childCount(), 1);
    EXPECT_TRUE(filled->child(0)->state().invisible);
    EXPECT_EQ(filled->child(0)->childCount(), 0);
    interface(named("Ring"))
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(preferences().highlight.style, HighlightStyle::ring);
}

TEST_F(ComponentsTest, TheKeyboardReachesEverythingInReadingOrder) {
    show(column(
        8,
        {modeChoices(view, true),
         row(8, {label(view, Text{"Color", "颜色"}),
                 colorChoices(view, laserColor(), Palette::laser)}),
         diameterSlider(),
         row(8, {labelButton(view, "gearshape", Text{"Settings", "设置"}, bodyText, [] {}),
                 spacer(), labelButton(view, "power", Text{"Quit", "退出"}, bodyText, [] {})})}));
    QStringList visited;
    for (int i = 0; i < 10; ++i) {
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        visited << QApplication::focusWidget()->accessibleName();
        QTest::keyClick(window.get(), Qt::Key_Tab);
    }
    EXPECT_EQ(visited.join(QStringLiteral(", ")).toStdString(),
              "Off, Highlight, Laser Pointer, Red, Green, Blue, Custom color, Diameter, Settings, "
              "Quit");
}

TEST_F(ComponentsTest, TheSpaceBarWorksWhatTheKeyboardIsAtAndARingShowsIt) {
    show(modeChoices(view, true));
    auto* laser = named<QAbstractButton>("Laser Pointer");
    const auto before = laser->grab().toImage();
    laser->setFocus();
    EXPECT_EQ(laser->grab().toImage(), before);
    QTest::keyClick(window.get(), Qt::Key_Backtab);
    QTest::keyClick(window.get(), Qt::Key_Tab);
    EXPECT_TRUE(laser->hasFocus());
    EXPECT_NE(laser->grab().toImage(), before);
    QTest::keyClick(laser, Qt::Key_Space);
    EXPECT_EQ(state.mode().get(), CursorMode::laser);
}

TEST_F(ComponentsTest, ManyChangesAtOnceLeadToOneRoundOfUpdates) {
    int updates = 0;
    QObject follower;
    view.follow(&follower, [&] { ++updates; });
    update();
    updates = 0;
    state.setMode(CursorMode::highlight);
    state.setMode(CursorMode::laser);
    EXPECT_EQ(updates, 0);
    update();
    EXPECT_EQ(updates, 1);
}

TEST_F(ComponentsTest, APartIsThereOnlyWhileItsConditionHolds) {
    auto* part = view.showWhile(label(view, Text{"Wait time", "等待时间"}),
                                [&] { return preferences().highlight.idleHide; });
    show(column(8, {idleToggle(), part}));
    for (const bool hide : {false, true, false}) {
        change([&](auto& preferences) { preferences.highlight.idleHide = hide; });
        EXPECT_EQ(part->isVisible(), hide);
    }
}

TEST_F(ComponentsTest, ABadgeTellsWhatIsOn) {
    auto* badge = new StatusBadge(
        view, [&](bool) { return QString::fromStdString(state.title(state.mode().get())); },
        [&] { return state.mode().get() != CursorMode::off; });
    show(row(0, {badge, spacer()}));
    const auto off = badge->grab().toImage();
    state.setMode(CursorMode::laser);
    update();
    EXPECT_EQ(badge->findChild<QLabel*>()->text(), QStringLiteral("Laser"));
    EXPECT_NE(badge->grab().toImage().copy(0, 0, 30, 20), off.copy(0, 0, 30, 20));
}

TEST_F(ComponentsTest, EveryPictogramIsThereAndTakesItsTint) {
    for (const std::string_view name : {"cursorarrow",
                                        "cursorarrow.rays",
                                        "cursorarrow.click",
                                        "scope",
                                        "nosign",
                                        "checkmark",
                                        "checkmark.circle.fill",
                                        "circle",
                                        "chevron.right",
                                        "gearshape",
                                        "questionmark.circle",
                                        "power",
                                        "sun.max",
                                        "sparkles",
                                        "keyboard",
                                        "info.circle",
                                        "xmark.circle",
                                        "exclamationmark.triangle",
                                        "checkmark.shield",
                                        "hand.raised",
                                        "doc.text",
                                        "slider.horizontal.3"}) {
        const auto picture = pictogram(name, 24, Qt::red, 2).toImage();
        ASSERT_EQ(picture.size(), QSize(48, 48)) << name;
        int inked = 0;
        for (int i = 0; i < 48 * 48; ++i) {
            const auto color = picture.pixelColor(i % 48, i / 48);
            inked += color.alpha() == 255 ? 1 : 0;
            EXPECT_TRUE(color.alpha() < 255 || color == QColor(Qt::red)) << name;
        }
        EXPECT_GT(inked, 30) << name;
    }
    EXPECT_TRUE(pictogram("no.such", 24, Qt::red, 1).isNull());
}

TEST_F(ComponentsTest, ColoursFollowTheDesktopFromLightToDarkAndBack) {
    auto* text = label(view, Text{"Color", "颜色"}, calloutText.toned(Tone::secondary));
    auto* reset = pushButton(
        view, Text{"Reset", "重置"}, [] {}, ButtonRole::destructive);
    show(column(8, {text, reset}));
    const auto colors = [&] {
        return std::pair(text->palette().color(QPalette::WindowText),
                         reset->palette().color(QPalette::ButtonText));
    };
    const auto light = QApplication::palette();
    const auto inLight = colors();
    QApplication::setPalette(QPalette(Qt::darkGray, QColor(0x20, 0x20, 0x20)));
    update();
    EXPECT_LT(inLight.first.lightness(), 128);
    EXPECT_GT(colors().first.lightness(), 128);
    EXPECT_GT(colors().second.lightness(), inLight.second.lightness());
    QApplication::setPalette(light);
    update();
    EXPECT_EQ(colors(), inLight);
}

TEST_F(ComponentsTest, NoTextIsCutInEitherLanguage) {
    auto* card = new SectionCard(
        view, Text{"Displays and Recording", "多显示器与录屏"},
        Text{
            "A subtitle that is so long that it cannot fit into one line of a narrow panel",
            "一个很长的副标题，长到在一个很窄的面板里无论如何都放不进一行之内，就算字体里没有汉字，"
            "每个字都只是一个很窄的方框，它也还是需要换行"},
        symbolLabel(view, "info.circle", Tone::orange,
                    Text{"Click monitoring could not start. Highlight still works.",
                         "点击监听未能启动，高亮仍可使用。请重试，或退出后重新打开应用。"}));
    show(column(12, {modeChoices(view, true), highlightChoices(view, true), card, spacer()})
             ->padded(16));
    for (const auto language : {AppLanguage::english, AppLanguage::chinese}) {
        change([&](auto& preferences) { preferences.language = language; });
        window->resize(340, 560);
        update();
        for (const auto* text : window->findChildren<QLabel*>()) {
            EXPECT_GE(text->width(), text->minimumSizeHint().width()) << text->text().toStdString();
            EXPECT_GE(text->height(), text->hasHeightForWidth()
                                          ? text->heightForWidth(text->width())
                                          : text->sizeHint().height())
                << text->text().toStdString();
        }
        EXPECT_GT(card->findChildren<QLabel*>()[1]->height(), 20);
    }
}

} // namespace
} // namespace vantrel
