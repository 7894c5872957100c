#include "support/components_fixture.h"
#include "ui/components/action_row.h"
#include "ui/components/buttons.h"
#include "ui/components/color_well.h"
#include "ui/components/effect_preview.h"
#include "ui/components/highlight_choices.h"
#include "ui/components/label.h"
#include "ui/components/mode_choices.h"
#include "ui/components/pictogram.h"
#include "ui/components/plain_style.h"
#include "ui/components/scroll_view.h"
#include "ui/components/section_card.h"
#include "ui/components/slider.h"
#include "ui/components/stack.h"
#include "ui/components/switch_toggle.h"
#include "ui/components/value_slider.h"

#include <QAccessible>
#include <QColorDialog>
#include <QScrollBar>

namespace vantrel {
namespace {

class ComponentsTest : public ViewTest {
protected:
    static QAccessibleInterface* told(QObject* part) {
        return QAccessible::queryAccessibleInterface(part);
    }
    ValueSlider* diameterSlider() {
        return new ValueSlider(
            view, Text{"Diameter", "直径"},
            view.binding(&AppPreferences::highlight, &HighlightSettings::diameter),
            {.range = {24, 120, 64}, .suffix = "pt"});
    }
    SwitchToggle* idleToggle() {
        return new SwitchToggle(
            view, Text{"Hide when idle", "闲置时隐藏"},
            view.binding(&AppPreferences::highlight, &HighlightSettings::idleHide));
    }
};

TEST_F(ComponentsTest, SliderTextIsRoundedWithHalvesAwayFromZero) {
    const ValueScale percent{.range = {0.1, 0.9, 0.35}, .suffix = "%", .percent = true};
    const ValueScale points{.range = {24, 120, 64}, .suffix = "pt"};
    EXPECT_EQ(percent.text(0.355), QStringLiteral("36 %"));
    EXPECT_EQ(percent.text(0.345), QStringLiteral("35 %"));
    EXPECT_EQ(points.text(47.5), QStringLiteral("48 pt"));
    EXPECT_EQ(points.text(47.49), QStringLiteral("47 pt"));
}

TEST_F(ComponentsTest, ASliderIsDraggedAndFollowsTheState) {
    show(diameterSlider());
    auto* slider = named<Slider>("Diameter");
    QTest::keyClick(slider, Qt::Key_Right);
    EXPECT_EQ(preferences().highlight.diameter, 65);
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

TEST_F(ComponentsTest, AllDigitsAreEquallyWide) {
    OffscreenApplication::useFont("Inter"); // whose own are not
    show(diameterSlider());
    const auto width = [&](double value) {
        change([&](auto& preferences) { preferences.highlight.diameter = value; });
        return window->findChildren<QLabel*>()[1]->sizeHint().width();
    };
    EXPECT_EQ(width(31), width(88));
    EXPECT_LT(width(88), width(100));
    OffscreenApplication::useFont("DejaVu Sans");
}

TEST_F(ComponentsTest, ModeChoicesSwitchTheModeAndShowAChangeMadeElsewhere) {
    for (const auto density : {Density::compact, Density::regular}) {
        show(new ModeChoices(view, density));
        named<QAbstractButton>("Laser Pointer")->click();
        EXPECT_EQ(state.mode().get(), CursorMode::laser);
        EXPECT_EQ(named<QAbstractButton>("Off")->height(), density == Density::compact ? 58 : 64);
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
        const auto hovered = [&](bool isHovered) {
            named("Off")->setAttribute(Qt::WA_UnderMouse, isHovered);
            return fill("Off");
        };
        EXPECT_NE(hovered(true), hovered(false));
    }
}

TEST_F(ComponentsTest, AScreenReaderIsToldWhatEachPartIs) {
    show(column(8, {new ModeChoices(view, Density::compact),
                    new HighlightChoices(view, Density::compact), diameterSlider(), idleToggle(),
                    new EffectPreview(view, Text{"Local preview", "局部预览"}, {}),
                    new CustomColorWell(view, highlightColor(), Text{"Custom color", "自定义颜色"}),
                    new ActionRow(view, Text{"Privacy", "隐私说明"}, "hand.raised",
                                  Text{"What stays here", "留在本机"}, [] {})}));
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
        {"Hide when idle", QAccessible::CheckBox, false},
        {"Custom color", QAccessible::PushButton, false},
        {"Local preview", QAccessible::Graphic, false},
        {"Privacy", QAccessible::Button, false},
    };
    for (const auto& [name, role, checked] : cases) {
        auto* part = told(named(name));
        EXPECT_EQ(part->text(QAccessible::Name), QString::fromUtf8(name));
        EXPECT_EQ(part->role(), role) << name;
        EXPECT_EQ(part->state().checked, checked) << name;
    }
    EXPECT_EQ(told(named("Privacy"))->text(QAccessible::Description),
              QStringLiteral("What stays here"));

    auto* diameter = told(named("Diameter"));
    EXPECT_EQ(diameter->text(QAccessible::Value), QStringLiteral("64 pt"));
    EXPECT_EQ(diameter->valueInterface()->currentValue(), 64);
    EXPECT_EQ(diameter->valueInterface()->minimumValue(), 24);
    EXPECT_EQ(diameter->valueInterface()->maximumValue(), 120);
    diameter->valueInterface()->setCurrentValue(80);
    EXPECT_EQ(preferences().highlight.diameter, 80);

    // A button's face says nothing of its own.
    auto* filled = told(named("Filled"));
    ASSERT_EQ(filled->childCount(), 1);
    EXPECT_TRUE(filled->child(0)->state().invisible);
    EXPECT_EQ(filled->child(0)->childCount(), 0);

    const auto act = [&](const char* name) {
        auto* actions = told(named(name))->actionInterface();
        actions->doAction(actions->actionNames().front());
        update();
    };
    act("Ring");
    EXPECT_EQ(preferences().highlight.style, HighlightStyle::ring);
    act("Hide when idle");
    EXPECT_TRUE(preferences().highlight.idleHide);
    EXPECT_TRUE(told(named("Hide when idle"))->state().checked);
    act("Custom color");
    EXPECT_NE(named<CustomColorWell>("Custom color")->dialog(), nullptr);
    EXPECT_FALSE(told(named("Custom color"))->state().checked);
}

TEST_F(ComponentsTest, TheSpaceBarWorksWhatTheKeyboardIsAtAndARingShowsIt) {
    show(new ModeChoices(view, Density::compact));
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

TEST_F(ComponentsTest, APictogramTakesItsTint) {
    const auto picture = pictogram("cursorarrow.rays", 24, Qt::red, 2).toImage();
    ASSERT_EQ(picture.size(), QSize(48, 48));
    int inked = 0;
    for (int i = 0; i < 48 * 48; ++i) {
        const auto color = picture.pixelColor(i % 48, i / 48);
        inked += color.alpha() == 255 ? 1 : 0;
        EXPECT_TRUE(color.alpha() < 255 || color == QColor(Qt::red));
    }
    EXPECT_GT(inked, 30);
}

TEST_F(ComponentsTest, ACardThrowsAShadowBeyondItsEdges) {
    show(new ScrollView(
        column(0, {new SectionCard(view, Text{"Card", "卡片"}, label(view, Text::name("Text")))})
            ->padded(40)));
    window->resize(300, 300);
    update();
    const auto* card = parts<SectionCard>().at(0);
    const QRect edge(card->mapTo(window.get(), QPoint()), card->size());
    const auto picture = window->grab().toImage();
    const auto green = [&](int x, int y) { return picture.pixelColor(x, y).green(); };
    const auto middle = edge.center();
    EXPECT_LT(green(edge.left() - 2, middle.y()), green(edge.left() - 20, middle.y()));
    EXPECT_LT(green(edge.right() + 2, middle.y()), green(edge.right() + 20, middle.y()));
    EXPECT_LT(green(middle.x(), edge.bottom() + 3), green(middle.x(), edge.bottom() + 20));
}

TEST_F(ComponentsTest, LooksAreKeptUnderOtherStyles) {
    QApplication::setStyle(QStringLiteral("windows"));
    auto* scrolled = new ScrollView(label(view, Text::name("Text")));
    show(scrolled);
    EXPECT_FALSE(scrolled->verticalScrollBar()->testAttribute(Qt::WA_OpaquePaintEvent));
    installPlainStyle();
    EXPECT_EQ(dynamic_cast<PlainStyle*>(QApplication::style()), nullptr);
    QApplication::setStyle(new QProxyStyle(QStringLiteral("fusion")));
    installPlainStyle();
    EXPECT_NE(dynamic_cast<PlainStyle*>(QApplication::style()), nullptr);
    QApplication::setStyle(QStringLiteral("fusion"));
}

TEST_F(ComponentsTest, SmallTextsCanBeReadOnEveryDesktop) {
    struct Desktop {
        const char* name;
        QRgb window, base, button, text;
    };
    const Desktop desktops[] = {
        {"Fusion", 0xEFEFEF, 0xFFFFFF, 0xEFEFEF, 0x000000},
        {"Breeze", 0xEFF0F1, 0xFFFFFF, 0xFCFCFC, 0x232629},
        {"Breeze Dark", 0x202326, 0x141618, 0x292C30, 0xFCFCFC},
        {"Adwaita Dark", 0x353535, 0x2D2D2D, 0x454545, 0xEEEEEC},
        {"darker", 0x5C5B5A, 0x484848, 0x6A6967, 0xFFFFFF},
    };
    for (const auto& [name, ground, base, button, text] : desktops) {
        QPalette palette{QColor(button), QColor(ground)};
        palette.setColor(QPalette::Base, QColor(base));
        palette.setColor(QPalette::WindowText, QColor(text));
        palette.setColor(QPalette::Highlight, toneColor(Tone::blue, palette));
        EXPECT_GE(contrast(toneColor(Tone::onAccent, palette), toneColor(Tone::accent, palette)),
                  4.5);
        for (const auto tone :
             {Tone::secondary, Tone::accentText, Tone::green, Tone::orange, Tone::red}) {
            const auto color = toneColor(tone, palette);
            for (const auto role : {QPalette::Window, QPalette::Base, QPalette::Button}) {
                EXPECT_GE(contrast(color, palette.color(role)), 4.5)
                    << name << ": " << static_cast<int>(tone) << " on " << role;
            }
            const auto fill = laidOver(palette.color(QPalette::Window), color, 0.1);
            EXPECT_GE(contrast(color, fill), 4.5) << name << ": " << static_cast<int>(tone);
        }
    }
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

} // namespace
} // namespace vantrel
