#include "overlay/preview_canvas.h"
#include "support/views_fixture.h"
#include "ui/components/color_well.h"
#include "ui/components/mode_choices.h"
#include "ui/components/plain_style.h"
#include "ui/components/section_card.h"
#include "ui/components/slider.h"
#include "ui/components/style.h"
#include "ui/components/value_slider.h"

#include <QAccessible>
#include <QColorDialog>
#include <QProxyStyle>

namespace vantrel {
namespace {

// The components, in the pages that are made of them.
class ComponentsTest : public ViewsTest {
protected:
    QAccessibleInterface* told(const char* name) {
        return QAccessible::queryAccessibleInterface(named(name));
    }
    QRgb pixel(const char* name, QPoint place) {
        return named(name)->grab().toImage().pixel(place);
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
    openSettings(SettingsTab::appearance);
    auto* slider = named<Slider>("Diameter");
    const auto diameter = [&] { return preferences().highlight.diameter; };
    QTest::keyClick(slider, Qt::Key_Right);
    EXPECT_EQ(diameter(), 65);
    QTest::mousePress(slider, Qt::LeftButton, {}, {slider->width() / 2, 10});
    EXPECT_NEAR(diameter(), 72, 0.5);
    QTest::mouseMove(slider, {2 * slider->width(), 10});
    EXPECT_EQ(diameter(), 120);
    QTest::mouseMove(slider, {slider->width() / 2, 10});
    EXPECT_NEAR(diameter(), 72, 0.5);
    QTest::mouseRelease(slider, Qt::LeftButton, {}, {slider->width() / 2, 10});
    // Held beside its middle, the knob stays where it is.
    QTest::mousePress(slider, Qt::LeftButton, {}, {slider->width() / 2 + 4, 10});
    EXPECT_NEAR(diameter(), 72, 0.5);
    QTest::mouseRelease(slider, Qt::LeftButton, {}, {slider->width() / 2 + 4, 10});

    EXPECT_EQ(assignments([&] {
                  change([](auto& preferences) { preferences.highlight.diameter = 47.123; });
              }),
              1);
    EXPECT_EQ(diameter(), 47.123);
    EXPECT_NEAR(slider->shownValue(), 47.123, 0.01);
}

TEST_F(ComponentsTest, AllDigitsAreEquallyWide) {
    OffscreenApplication::useFont("Inter"); // whose own are not
    openSettings(SettingsTab::appearance);
    const auto width = [&](int value) {
        change([&](auto& preferences) { preferences.highlight.diameter = value; });
        return label(QStringLiteral("%1 pt").arg(value))->sizeHint().width();
    };
    EXPECT_EQ(width(31), width(88));
    EXPECT_LT(width(88), width(100));
    OffscreenApplication::useFont("DejaVu Sans");
}

TEST_F(ComponentsTest, ChoicesAreMadeByClickOrSpaceBarAndLookIt) {
    const auto expect = [&](int height) {
        auto* laser = named<QAbstractButton>("Laser Pointer");
        EXPECT_EQ(laser->height(), height);
        laser->click();
        EXPECT_EQ(state.mode().get(), CursorMode::laser);
        setMode(CursorMode::highlight);
        const auto accent = window->palette().color(QPalette::Highlight).rgb();
        EXPECT_EQ(pixel("Highlight", {20, 8}), accent);
        EXPECT_NE(pixel("Laser Pointer", {20, 8}), accent);
        const auto plain = laser->grab().toImage();
        laser->setAttribute(Qt::WA_UnderMouse);
        EXPECT_NE(laser->grab().toImage(), plain);
        laser->setAttribute(Qt::WA_UnderMouse, false);
        // A ring shows where the keyboard is, once it is used.
        laser->setFocus();
        EXPECT_EQ(laser->grab().toImage(), plain);
        QTest::keyClick(window.get(), Qt::Key_Backtab);
        QTest::keyClick(window.get(), Qt::Key_Tab);
        EXPECT_TRUE(laser->hasFocus());
        EXPECT_NE(laser->grab().toImage(), plain);
        QTest::keyClick(laser, Qt::Key_Space);
        EXPECT_EQ(state.mode().get(), CursorMode::laser);
    };
    open<MenuPanel>();
    expect(58);
    show(new ModeChoices(view, Density::regular));
    expect(64);
}

TEST_F(ComponentsTest, AScreenReaderIsToldWhatEachPartIs) {
    struct Case {
        const char* name;
        QAccessible::Role role;
        bool checked = false;
    };
    const auto expect = [&](std::initializer_list<Case> cases) {
        for (const auto& [name, role, checked] : cases) {
            EXPECT_EQ(told(name)->text(QAccessible::Name), QString::fromUtf8(name));
            EXPECT_EQ(told(name)->role(), role) << name;
            EXPECT_EQ(told(name)->state().checked, checked) << name;
        }
    };
    openSettings(SettingsTab::about);
    expect({{"Privacy", QAccessible::Button}, {"About", QAccessible::PageTab}});
    QStringList headings;
    for (auto* text : parts<QLabel>()) {
        const auto* heard = QAccessible::queryAccessibleInterface(text);
        if (heard->role() == QAccessible::Heading) {
            headings << heard->text(QAccessible::Name);
        }
    }
    EXPECT_EQ(headings, (QStringList{QStringLiteral("About"), QStringLiteral("Vantrel")}));
    EXPECT_TRUE(told("About")->state().selected);
    EXPECT_FALSE(told("Effects")->state().selected);

    openSettings(SettingsTab::appearance);
    expect({{"Mode", QAccessible::Grouping},
            {"Off", QAccessible::RadioButton, true},
            {"Laser Pointer", QAccessible::RadioButton},
            {"Filled", QAccessible::RadioButton, true},
            {"Ring", QAccessible::RadioButton},
            {"Diameter", QAccessible::Slider},
            {"Hide when idle", QAccessible::CheckBox},
            {"Custom color", QAccessible::PushButton},
            {"Local highlight preview", QAccessible::Graphic}});

    const auto value = [&](const char* name, const char* text, int at, int low, int high) {
        auto* values = told(name)->valueInterface();
        EXPECT_EQ(told(name)->text(QAccessible::Value).toStdString(), text);
        EXPECT_EQ(values->currentValue(), at);
        EXPECT_EQ(values->minimumValue(), low);
        EXPECT_EQ(values->maximumValue(), high);
    };
    value("Diameter", "64 pt", 64, 24, 120);
    value("Opacity", "35 %", 35, 10, 90);
    told("Diameter")->valueInterface()->setCurrentValue(80);
    EXPECT_EQ(preferences().highlight.diameter, 80);

    // Nothing is named again when something else changes.
    static int names = 0;
    const auto before = QAccessible::installUpdateHandler([](QAccessibleEvent* event) {
        const bool isText = qobject_cast<QLabel*>(event->object()) != nullptr;
        names += event->type() == QAccessible::NameChanged && !isText ? 1 : 0;
    });
    change([](auto& preferences) { preferences.highlight.opacity = 0.5; });
    EXPECT_EQ(names, 0);
    QAccessible::installUpdateHandler(before);

    // A button's face says nothing of its own.
    auto* filled = told("Filled");
    ASSERT_EQ(filled->childCount(), 1);
    EXPECT_TRUE(filled->child(0)->state().invisible);
    EXPECT_EQ(filled->child(0)->childCount(), 0);

    const auto act = [&](const char* name) {
        auto* actions = told(name)->actionInterface();
        actions->doAction(actions->actionNames().front());
        update();
    };
    act("Ring");
    EXPECT_EQ(preferences().highlight.style, HighlightStyle::ring);
    act("Hide when idle");
    EXPECT_TRUE(preferences().highlight.idleHide);
    EXPECT_TRUE(told("Hide when idle")->state().checked);
    act("Custom color");
    EXPECT_NE(named<CustomColorWell>("Custom color")->dialog(), nullptr);
    EXPECT_FALSE(told("Custom color")->state().checked);
}

TEST_F(ComponentsTest, AChoiceOfAStyleShowsThatStyle) {
    openSettings(SettingsTab::appearance);
    const auto sample = [&](const char* name) {
        const auto* choice = named(name);
        const auto all = parts<PreviewCanvas>();
        const auto own = std::ranges::find_if(
            all, [&](const auto* canvas) { return choice->isAncestorOf(canvas); });
        return own == all.end() ? QImage() : (*own)->grab().toImage();
    };
    EXPECT_FALSE(sample("Filled").isNull());
    EXPECT_NE(sample("Filled"), sample("Ring"));
    EXPECT_NE(sample("Filled"), sample("Glow"));
}

TEST_F(ComponentsTest, ASwitchShowsItsStateByThePlaceOfItsKnob) {
    openSettings(SettingsTab::appearance);
    const auto rightEnd = [&] {
        const auto* toggle = named("Hide when idle");
        return QColor(pixel("Hide when idle", {toggle->width() - 10, toggle->height() / 2}));
    };
    EXPECT_NE(rightEnd(), QColor(Qt::white));
    click("Hide when idle");
    EXPECT_EQ(rightEnd(), QColor(Qt::white));
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

TEST_F(ComponentsTest, ACardThrowsAShadowBeyondItsEdges) {
    openSettings(SettingsTab::about).resize(560, 900);
    update();
    const auto* card = parts<SectionCard>().at(0);
    const QRect edge(card->mapTo(window.get(), QPoint()), card->size());
    const auto picture = window->grab().toImage();
    const auto green = [&](int x, int y) { return picture.pixelColor(x, y).green(); };
    const auto middle = edge.center();
    EXPECT_LT(green(edge.left() - 2, middle.y()), green(edge.left() - 18, middle.y()));
    EXPECT_LT(green(edge.right() + 2, middle.y()), green(edge.right() + 18, middle.y()));
    EXPECT_LT(green(middle.x(), edge.bottom() + 3), green(middle.x(), edge.bottom() + 20));
}

TEST_F(ComponentsTest, LooksAreKeptUnderOtherStyles) {
    QApplication::setStyle(QStringLiteral("windows"));
    openSettings(SettingsTab::about);
    EXPECT_FALSE(scrolled()->verticalScrollBar()->testAttribute(Qt::WA_OpaquePaintEvent));
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
        EXPECT_EQ(isDark(palette), QColor(text).lightness() > 128) << name;
        EXPECT_GE(contrast(toneColor(Tone::onAccent, palette), toneColor(Tone::accent, palette)),
                  4.5);
        for (const auto tone :
             {Tone::secondary, Tone::accentText, Tone::green, Tone::orange, Tone::red}) {
            const auto color = toneColor(tone, palette);
            const auto [from, to] = windowEnds(palette);
            EXPECT_GE(contrast(color, QColor(button)), 4.5) << name << static_cast<int>(tone);
            for (const QColor& plain : {from, to, QColor(base)}) {
                EXPECT_GE(contrast(color, laidOver(plain, color, 0.1)), 4.5)
                    << name << ": " << static_cast<int>(tone) << " on "
                    << plain.name().toStdString();
            }
        }
    }
}

TEST_F(ComponentsTest, ColoursFollowTheDesktopFromLightToDarkAndBack) {
    openSettings(SettingsTab::general);
    const auto colors = [&] {
        return std::pair(label(QStringLiteral("Vantrel"))->palette().color(QPalette::WindowText),
                         button("Reset all preferences…")->palette().color(QPalette::ButtonText));
    };
    const auto inLight = colors();
    const double scale = textScale();
    follow({.dark = true, .textScale = 1.5});
    update();
    EXPECT_GT(textScale(), scale);
    EXPECT_LT(inLight.first.lightness(), 128);
    EXPECT_GT(inLight.second.red(), inLight.second.green() + 60);
    EXPECT_GT(colors().first.lightness(), 128);
    EXPECT_GT(colors().second.lightness(), inLight.second.lightness());
    follow({});
    update();
    EXPECT_EQ(colors(), inLight);
    EXPECT_EQ(textScale(), scale);
}

} // namespace
} // namespace vantrel
