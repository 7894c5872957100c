#include "overlay/preview_canvas.h"
#include "support/views_fixture.h"

#include <QAccessible>
#include <QRegularExpression>
#include <QVBoxLayout>
#include <QWheelEvent>

namespace vantrel {
namespace {

class WelcomeTest : public ViewsTest {
protected:
    void SetUp() override {
        ViewsTest::SetUp();
        open<WelcomeView>([this] {
            ++dismissals_;
            flagWhenDismissed_ = desktop.userDefaults.boolean(welcomeDismissedKey);
        });
    }

    int dismissals_ = 0;
    bool flagWhenDismissed_ = false;
};

TEST_F(WelcomeTest, DismissingItIsRememberedBeforeItClosesAndEnterDoesSoToo) {
    EXPECT_FALSE(desktop.userDefaults.boolean("welcomeDismissed"));
    click("Get started");
    EXPECT_EQ(dismissals_, 1);
    EXPECT_TRUE(flagWhenDismissed_);
    QTest::keyClick(window.get(), Qt::Key_Return);
    EXPECT_EQ(dismissals_, 2);
    named("Local highlight preview")->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Enter);
    EXPECT_EQ(dismissals_, 3) << "wherever the focus is";
}

class HelpTest : public ViewsTest {};

TEST_F(HelpTest, EveryLinkLeadsToItsPageOrWhereItIsNotConfiguredToTheHelp) {
    struct Case {
        const char* name;
        const char* page;
    };
    const Case ofAbout[] = {{"Privacy", "https://example.org/privacy"},
                            {"Terms of use", "https://example.org/terms"},
                            {"Help and support", "mailto:help@example.org"}};
    const Case ofHelp[] = {{"Privacy policy", "https://example.org/privacy"},
                           {"Terms of use", "https://example.org/terms"},
                           {"Contact support", "mailto:help@example.org"}};
    int helps = 0;
    state.openWindow = [&](AppWindow asked) { helps += asked == AppWindow::help ? 1 : 0; };
    openSettings(SettingsTab::about);
    click("Privacy");
    EXPECT_EQ(helps, 1);
    open<HelpView>();
    EXPECT_FALSE(button("Contact support")->isEnabled());
    configureLinks("<key>PrivacyURL</key><string>https://example.org/privacy</string>"
                   "<key>TermsURL</key><string>https://example.org/terms</string>"
                   "<key>SupportURL</key><string>mailto:help@example.org</string>");
    const auto follow = [&](const Case& link) {
        click(link.name);
        EXPECT_EQ(desktop.workspace.opened.back(), link.page) << link.name;
    };
    openSettings(SettingsTab::about);
    std::ranges::for_each(ofAbout, follow);
    open<HelpView>();
    std::ranges::for_each(ofHelp, follow);
    EXPECT_EQ(helps, 1);
}

TEST_F(HelpTest, ScrollsByKeyboardAlsoWithoutALinkToGoTo) {
    window = std::make_unique<QWidget>();
    (new QVBoxLayout(window.get()))->addWidget(new HelpView(view));
    window->resize(520, 300);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    EXPECT_FALSE(button("Privacy policy")->isEnabled());
    auto* bar = scrolled()->verticalScrollBar();
    QTest::keyClick(window->windowHandle(), Qt::Key_Down);
    EXPECT_GT(bar->value(), 0);
    QTest::keyClick(window->windowHandle(), Qt::Key_End);
    EXPECT_EQ(bar->value(), bar->maximum());
    EXPECT_GT(bar->maximum(), 0);
}

// In every view, on every tab and in every mode, while everything fails that can.
class AllViewsTest : public ViewsTest {
protected:
    void SetUp() override {
        ViewsTest::SetUp();
        desktop.eventMonitors.refusesGlobal = true;
        state.changePreferences([](auto& preferences) {
            preferences.language = AppLanguage::english;
            preferences.highlight.idleHide = true;
            preferences.laserShortcut = preferences.highlightShortcut;
        });
    }
    void forEachView(const std::function<void(const std::string&)>& visit) {
        open<WelcomeView>([] {});
        visit("welcome");
        open<HelpView>();
        visit("help");
        for (const auto mode : allCases<CursorMode>()) {
            state.setMode(mode);
            open<MenuPanel>();
            visit("panel in " + std::string(nameOf(mode)));
            for (const auto tab : allCases<SettingsTab>()) {
                openSettings(tab);
                visit(std::string(nameOf(tab)) + " in " + std::string(nameOf(mode)));
            }
        }
    }
    // Everything that is shown or told.
    QStringList texts() {
        QStringList all;
        for (const auto* part : window->findChildren<QWidget*>()) {
            all << part->accessibleName() << part->accessibleDescription() << part->toolTip();
            if (const auto* label = qobject_cast<const QLabel*>(part)) {
                all << label->text();
            } else if (const auto* button = qobject_cast<const QAbstractButton*>(part)) {
                all << button->text();
            } else if (const auto* picker = qobject_cast<const QComboBox*>(part)) {
                for (int i = 0; i < picker->count(); ++i) {
                    all << picker->itemText(i);
                }
            }
        }
        all.removeAll(QString());
        return all;
    }
};

TEST_F(AllViewsTest, NothingStaysInTheOtherLanguage) {
    const QRegularExpression neutral(
        QStringLiteral("^(Vantrel|English|简体中文|\\d+ (s|pt|%)|⌃⌥[HL]|vantrel .*)$"));
    const QRegularExpression chinese(QStringLiteral("\\p{Han}"));
    const auto expectAll = [&](bool inChinese, const std::string& where) {
        for (const auto& text : texts()) {
            EXPECT_TRUE(neutral.match(text).hasMatch() ||
                        chinese.match(text).hasMatch() == inChinese)
                << where << ": " << text.toStdString();
        }
    };
    forEachView([&](const std::string& where) {
        EXPECT_GT(texts().size(), 8) << where;
        expectAll(false, where);
        change([](auto& preferences) { preferences.language = AppLanguage::chinese; });
        expectAll(true, where);
        change([](auto& preferences) { preferences.language = AppLanguage::english; });
        expectAll(false, where);
    });
}

TEST_F(AllViewsTest, NoTextIsCutInTheSmallestWindow) {
    const auto noneIsCut = [&](const std::string& where) {
        for (const auto language : {AppLanguage::english, AppLanguage::chinese}) {
            window->resize(window->minimumSizeHint().expandedTo({520, 560}));
            change([&](auto& preferences) { preferences.language = language; });
            update();
            EXPECT_LE(window->minimumSizeHint().width(), 520) << where;
            const auto* area = scrolled();
            EXPECT_LE(area->widget()->width(), area->viewport()->width()) << where;
            for (const auto* text : window->findChildren<QLabel*>()) {
                if (!text->isVisible()) {
                    continue;
                }
                EXPECT_GE(text->width(), text->minimumSizeHint().width())
                    << where << ": " << text->text().toStdString();
                EXPECT_GE(text->height(), text->hasHeightForWidth()
                                              ? text->heightForWidth(text->width())
                                              : text->sizeHint().height())
                    << where << ": " << text->text().toStdString();
            }
        }
    };
    for (const int points : {10, 16}) {
        OffscreenApplication::useFont("DejaVu Sans", points);
        forEachView(noneIsCut);
    }
    OffscreenApplication::useFont("DejaVu Sans");
}

TEST_F(AllViewsTest, ScreenReadersAreToldANameWhereverTheKeyboardStops) {
    forEachView([&](const std::string& where) {
        for (auto* part : window->findChildren<QWidget*>()) {
            if (!part->isVisible() || (part->focusPolicy() & Qt::TabFocus) == 0) {
                continue;
            }
            auto* told = QAccessible::queryAccessibleInterface(part);
            // A pop-up's own name is what was chosen.
            const auto labels = told->relations(QAccessible::Label);
            const bool isPopUp = qobject_cast<QComboBox*>(part) != nullptr;
            EXPECT_FALSE(isPopUp ? labels.isEmpty() : told->text(QAccessible::Name).isEmpty())
                << where << ": " << part->metaObject()->className();
        }
    });
}

TEST_F(AllViewsTest, APreviewShowsTheEffectThatItIsNamedAfter) {
    forEachView([&](const std::string& where) {
        for (auto* preview : parts<PreviewCanvas>()) {
            if (preview->accessibleName().isEmpty() || !preview->isVisible()) {
                continue;
            }
            const auto color = preview->grab().toImage().pixelColor(preview->width() / 2 - 5,
                                                                    preview->height() / 2);
            const bool isRed = color.red() > 2 * color.green();
            EXPECT_EQ(isRed, preview->accessibleName().contains(QStringLiteral("laser"))) << where;
        }
    });
}

// Every control writes its own field, and nothing else, once.
class ControlsTest : public ViewsTest {
protected:
    struct Case {
        const char* control;
        Qt::Key key;
        std::function<void(AppPreferences&)> effect;
    };

    void expect(CursorMode mode, const std::vector<Case>& cases) {
        AppPreferences start;
        start.language = AppLanguage::english;
        start.lastMode = mode;
        start.highlight.idleHide = true;
        for (const auto& [name, key, effect] : cases) {
            state.changePreferences([&](auto& preferences) { preferences = start; });
            update();
            auto* control = named(name);
            ASSERT_NE(control, nullptr);
            QWheelEvent wheel({5, 5}, control->mapToGlobal(QPointF(5, 5)), {}, {0, 120}, {}, {},
                              Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(control, &wheel);
            EXPECT_EQ(preferences(), start) << name;
            auto expected = start;
            effect(expected);
            EXPECT_EQ(assignments([&] {
                          control->setFocus(Qt::TabFocusReason);
                          QTest::keyClick(control, key);
                          update();
                      }),
                      1)
                << name;
            EXPECT_EQ(preferences(), expected) << name;
        }
    }

    const std::vector<Case> ofHighlight{
        {"Filled", Qt::Key_Space, [](auto& p) { p.highlight.style = HighlightStyle::filled; }},
        {"Ring", Qt::Key_Space, [](auto& p) { p.highlight.style = HighlightStyle::ring; }},
        {"Glow", Qt::Key_Space, [](auto& p) { p.highlight.style = HighlightStyle::glow; }},
        {"Purple", Qt::Key_Space,
         [](auto& p) { p.highlight.color = EffectColor::fromRgb(0xBF5AF2); }},
        {"Diameter", Qt::Key_Home, [](auto& p) { p.highlight.diameter = 24; }},
        {"Diameter", Qt::Key_End, [](auto& p) { p.highlight.diameter = 120; }},
        {"Opacity", Qt::Key_Home, [](auto& p) { p.highlight.opacity = 0.1; }},
        {"Opacity", Qt::Key_End, [](auto& p) { p.highlight.opacity = 0.9; }},
        {"Hide when idle", Qt::Key_Space, [](auto& p) { p.highlight.idleHide = false; }},
    };
    const std::vector<Case> ofLaser{
        {"Green", Qt::Key_Space, [](auto& p) { p.laser.color = EffectColor::fromRgb(0x34C759); }},
        {"Dot diameter", Qt::Key_Home, [](auto& p) { p.laser.diameter = 6; }},
        {"Dot diameter", Qt::Key_End, [](auto& p) { p.laser.diameter = 24; }},
        {"Low", Qt::Key_Space, [](auto& p) { p.laser.glow = GlowStrength::low; }},
        {"High", Qt::Key_Return, [](auto& p) { p.laser.glow = GlowStrength::high; }},
    };
};

TEST_F(ControlsTest, OfThePanel) {
    setMode(CursorMode::highlight);
    open<MenuPanel>();
    expect(CursorMode::highlight, ofHighlight);
    expect(CursorMode::highlight,
           {{"Click effects", Qt::Key_Down, [](auto& p) { p.click.style = ClickStyle::pulse; }},
            {"Click effects", Qt::Key_Up, [](auto& p) { p.click.style = ClickStyle::none; }}});
    setMode(CursorMode::laser);
    open<MenuPanel>();
    expect(CursorMode::laser, ofLaser);
}

TEST_F(ControlsTest, OfTheSettings) {
    openSettings(SettingsTab::appearance);
    expect(CursorMode::off, ofHighlight);
    expect(CursorMode::off,
           {{"Wait time", Qt::Key_Down, [](auto& p) { p.highlight.idleSeconds = 5; }},
            {"Wait time", Qt::Key_Up, [](auto& p) { p.highlight.idleSeconds = 2; }},
            {"Wait time", Qt::Key_End, [](auto& p) { p.highlight.idleSeconds = 10; }}});
    openSettings(SettingsTab::effects);
    expect(CursorMode::off, ofLaser);
    expect(CursorMode::off,
           {{"None", Qt::Key_Space, [](auto& p) { p.click.style = ClickStyle::none; }},
            {"Ripple", Qt::Key_Space, [](auto& p) { p.click.style = ClickStyle::ripple; }},
            {"Pulse", Qt::Key_Space, [](auto& p) { p.click.style = ClickStyle::pulse; }},
            {"Left button", Qt::Key_Space, [](auto& p) { p.click.left = false; }},
            {"Right button", Qt::Key_Space, [](auto& p) { p.click.right = false; }}});
    openSettings(SettingsTab::general);
    expect(CursorMode::off,
           {{"Language", Qt::Key_Home, [](auto& p) { p.language = AppLanguage::system; }},
            {"Language", Qt::Key_Up, [](auto& p) { p.language = AppLanguage::chinese; }}});
    setMode(CursorMode::laser);
    openSettings(SettingsTab::appearance);
    expect(CursorMode::laser, ofLaser);
}

} // namespace
} // namespace vantrel
