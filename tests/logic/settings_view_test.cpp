#include "overlay/preview_canvas.h"
#include "support/views_fixture.h"
#include "ui/components/pictogram.h"
#include "ui/components/status_badge.h"
#include "ui/compositor_binding.h"

#include <QAccessible>
#include <QClipboard>

namespace vantrel {
namespace {

class SettingsViewTest : public ViewsTest {
protected:
    static int inkIn(QWidget& part) {
        const auto picture = part.grab().toImage();
        int inked = 0;
        for (int i = 0; i < picture.width() * picture.height(); ++i) {
            const QPoint place(i % picture.width(), i / picture.width());
            inked += picture.pixel(place) != picture.pixel(0, 0) ? 1 : 0;
        }
        return inked;
    }
};

TEST_F(SettingsViewTest, BuildsATabWhenItIsFirstShown) {
    openSettings(SettingsTab::general);
    EXPECT_EQ(window->findChildren<QScrollArea*>().size(), 1);
    EXPECT_TRUE(says("Language and Startup"));
    click("Controls");
    EXPECT_EQ(state.selectedTab().get(), SettingsTab::controls);
    EXPECT_EQ(window->findChildren<QScrollArea*>().size(), 2);
    EXPECT_TRUE(says("Global Shortcuts"));
    EXPECT_FALSE(says("Language and Startup"));
    state.selectTab(SettingsTab::about);
    update();
    EXPECT_TRUE(says("Learn more"));
    EXPECT_EQ(checked(), (std::vector<std::string>{"Off", "About"}));
}

TEST_F(SettingsViewTest, TheAppearanceIsThatOfTheMode) {
    openSettings(SettingsTab::appearance);
    constexpr auto ofHighlight = "Choose a clear style that makes your cursor easy to follow.";
    constexpr auto ofLaser = "Adjust the laser dot color, size and glow to focus attention.";
    std::vector<int> inked; // of the badge's symbol
    const auto shows = [&](const char* name) {
        return std::ranges::any_of(parts<QAbstractButton>(), [&](const auto* part) {
            return part->isVisible() && part->accessibleName() == QString::fromUtf8(name);
        });
    };
    for (const auto mode : {CursorMode::off, CursorMode::laser, CursorMode::highlight}) {
        setMode(mode);
        const bool laser = mode == CursorMode::laser;
        EXPECT_EQ(says("Laser Pointer") && says(ofLaser) && says("Dot diameter"), laser);
        EXPECT_NE(says("Cursor Highlight") && says(ofHighlight) && says("Opacity"), laser);
        auto* badge = parts<StatusBadge>().at(0);
        EXPECT_EQ(badge->findChild<QLabel*>()->text().toStdString(), state.title(mode));
        const auto fill = badge->grab().toImage().pixelColor(badge->width() / 2, 2);
        EXPECT_EQ(fill.green() > fill.red(), mode != CursorMode::off);
        inked.push_back(inkIn(*parts<Symbol>().at(0)));
        EXPECT_EQ(shows("White"), !laser) << "the presets of the laser are fewer";
    }
    EXPECT_GT(inked[1], inked[0] * 3 / 2) << "a filled circle";
    EXPECT_EQ(inked[2], inked[1]);
    setMode(CursorMode::laser);
    state.selectTab(SettingsTab::effects);
    update();
    EXPECT_FALSE(says(ofLaser));
}

TEST_F(SettingsViewTest, TheWaitTimeIsThereOnlyWhenThePointerIsHiddenAtAll) {
    change([](auto& preferences) { preferences.highlight.idleSeconds = 5; });
    openSettings(SettingsTab::appearance);
    EXPECT_FALSE(says("Wait time"));
    EXPECT_EQ(assignments([&] { click("Hide when idle"); }), 1);
    EXPECT_TRUE(says("Wait time"));
    auto* picker = named<QComboBox>("Wait time");
    EXPECT_EQ(picker->currentText(), QStringLiteral("5 s"));
    QTest::keyClick(picker, Qt::Key_Down);
    EXPECT_EQ(preferences().highlight.idleSeconds, 10);
    click("Hide when idle");
    EXPECT_FALSE(says("Wait time"));
}

TEST_F(SettingsViewTest, TellsWhatIsWrongWithTheShortcuts) {
    constexpr auto duplicate = "Shortcuts must be different.";
    constexpr auto registration = "Registration failed. Choose another shortcut.";
    openSettings(SettingsTab::controls);
    EXPECT_FALSE(says(duplicate) || says(registration));
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    static QStringList announced;
    const auto usual = QAccessible::installUpdateHandler([](QAccessibleEvent* event) {
        if (event->type() == QAccessible::Announcement) {
            announced += static_cast<QAccessibleAnnouncementEvent*>(event)->message();
        }
    });
#endif
    const auto laser = preferences().laserShortcut;
    change([](auto& preferences) { preferences.laserShortcut = preferences.highlightShortcut; });
    EXPECT_TRUE(says(duplicate));
    EXPECT_FALSE(says(registration));
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    EXPECT_TRUE(QTest::qWaitFor([&] { return !announced.empty(); }));
#endif
    change([&](auto& preferences) { preferences.laserShortcut = laser; });
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QTest::qWait(20);
    QAccessible::installUpdateHandler(usual);
    EXPECT_EQ(announced, QStringList(QString::fromUtf8(duplicate)));
#endif
    desktop.hotKeys.heldByOthers = {{.keyCode = 4, .modifiers = 0x1800}};
    change([](auto& preferences) { preferences.laserShortcut = std::nullopt; });
    EXPECT_FALSE(says(duplicate));
    EXPECT_TRUE(says(registration));
    change([](auto& preferences) { preferences.highlightShortcut = std::nullopt; });
    EXPECT_FALSE(says(duplicate) || says(registration));
}

TEST_F(SettingsViewTest, ShortcutsAreClearedAndRestored) {
    openSettings(SettingsTab::controls);
    EXPECT_EQ(button("Toggle Highlight shortcut")->text(), QStringLiteral("⌃⌥H"));
    EXPECT_EQ(assignments([&] { click("Clear shortcut"); }), 1);
    EXPECT_EQ(preferences().highlightShortcut, std::nullopt);
    EXPECT_NE(preferences().laserShortcut, std::nullopt);
    EXPECT_EQ(button("Toggle Highlight shortcut")->text(), QStringLiteral("Record shortcut"));
    for (auto* part : parts<QAbstractButton>()) {
        if (part->accessibleName() == QStringLiteral("Clear shortcut")) {
            part->click();
        }
    }
    EXPECT_EQ(preferences().laserShortcut, std::nullopt);
    EXPECT_EQ(assignments([&] { click("Restore default shortcuts"); }), 2);
    EXPECT_EQ(preferences().highlightShortcut, Shortcut::defaultHighlight());
    EXPECT_EQ(preferences().laserShortcut, Shortcut::defaultLaser());
    EXPECT_EQ(button("Toggle Laser shortcut")->text(), QStringLiteral("⌃⌥L"));
}

TEST_F(SettingsViewTest, ClickMonitoringCanBeTriedAgain) {
    constexpr auto notice =
        "Click monitoring could not start. Highlight still works. Retry or reopen the app.";
    desktop.eventMonitors.refusesGlobal = true;
    for (const auto tab : {SettingsTab::effects, SettingsTab::controls}) {
        openSettings(tab);
        EXPECT_FALSE(says(notice));
        setMode(CursorMode::highlight);
        EXPECT_TRUE(says(notice));
        click("Retry click monitoring");
        EXPECT_TRUE(says(notice));
        desktop.eventMonitors.refusesGlobal = false;
        click("Retry click monitoring");
        EXPECT_FALSE(says(notice));
        desktop.eventMonitors.refusesGlobal = true;
        setMode(CursorMode::off);
    }
    setMode(CursorMode::highlight);
    desktop.eventMonitors.refusesGlobal = false;
    click("Refresh monitoring");
    EXPECT_TRUE(state.clickAvailable().get());
}

TEST_F(SettingsViewTest, TellsWhatACompositorKeepsToItself) {
    // A monitor of presses is refused in both.
    desktop.eventMonitors.refusesGlobal = true;
    desktop.application.compositorName = "sway";
    openSettings(SettingsTab::controls);
    setMode(CursorMode::highlight);
    constexpr auto line = "bindsym Ctrl+Mod1+h exec vantrel toggle highlight";
    constexpr auto taken = "Combinations that the desktop uses itself cannot be recorded.";
    EXPECT_FALSE(says(line));
    EXPECT_FALSE(says(taken));
    EXPECT_TRUE(says("Click monitoring could not start. Highlight still works. Retry or reopen "
                     "the app."));
    desktop.application.session = {.wayland = true, .layerShell = true, .cursorSessions = true};
    desktop.hotKeys.keysCanBeLeft = false;
    setMode(CursorMode::off);
    setMode(CursorMode::highlight);
    EXPECT_TRUE(says(line));
    EXPECT_TRUE(says(taken));
    EXPECT_TRUE(says("This compositor tells no program of clicks in other programs. Highlight "
                     "still works."));
    click("Copy");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QString::fromUtf8(line));
    desktop.hotKeys.keysCanBeLeft = true;
    desktop.marks.set(MarksState::available);
    update();
    EXPECT_FALSE(says(line));
    EXPECT_FALSE(says(taken));
}

TEST(CompositorBindingTest, SpeaksAsTheCompositorDoes) {
    constexpr auto command = "vantrel toggle laser";
    const Shortcut shortcut{37, modifier::control | modifier::command, "⌃⌘L"};
    for (const auto& [session, line] : std::map<std::string, std::string>{
             {"sway", "bindsym Ctrl+Mod4+l exec vantrel toggle laser"},
             {"labwc", "<keybind key=\"C-W-l\"><action name=\"Execute\" "
                       "command=\"vantrel toggle laser\"/></keybind>"},
             {"niri", "Ctrl+Super+l { spawn \"vantrel\" \"toggle\" \"laser\"; }"},
             {"Hyprland",
              "hl.bind(\"CTRL + SUPER + l\", hl.dsp.exec_cmd(\"vantrel toggle laser\"))"},
             {"river", "riverctl map normal Control+Super l spawn \"vantrel toggle laser\""},
             {"COSMIC", command},
         }) {
        EXPECT_EQ(compositorBinding(session, shortcut, command), line);
        EXPECT_EQ(compositorBinding(session, std::nullopt, command), command);
    }
    const auto named = [&](const char* display) {
        return compositorBinding("sway", Shortcut{0, modifier::option, display}, command);
    };
    EXPECT_EQ(named("⌥F5"), "bindsym Mod1+F5 exec vantrel toggle laser");
    // Of keys with other names in each of them.
    EXPECT_EQ(named("⌥Left"), command);
    EXPECT_EQ(named("⌥é"), command);
}

TEST_F(SettingsViewTest, ClicksAreTriedOutInThePreview) {
    openSettings(SettingsTab::effects);
    EXPECT_EQ(assignments([&] { click("Pulse"); }), 1);
    EXPECT_EQ(assignments([&] { click("Right button"); }), 1);
    EXPECT_EQ(preferences().click, (ClickSettings{ClickStyle::pulse, true, false}));
    auto* canvas = named<PreviewCanvas>("Local click preview");
    QTest::mouseClick(canvas, Qt::RightButton, {}, {40, 40});
    EXPECT_FALSE(canvas->click());
    QTest::mouseClick(canvas, Qt::LeftButton, {}, {40, 40});
    ASSERT_TRUE(canvas->click());
    EXPECT_EQ(canvas->click()->style, ClickStyle::pulse);
}

TEST_F(SettingsViewTest, LaunchingAtLoginIsTheDesktopsToAgreeTo) {
    constexpr auto refusal = "Could not change login launch. Run the installed app and retry.";
    openSettings(SettingsTab::general);
    EXPECT_EQ(assignments([&] { click("Launch at login"); }), 1);
    EXPECT_EQ(desktop.loginItem.current, LoginItemStatus::enabled);
    EXPECT_TRUE(button("Launch at login")->isChecked());
    EXPECT_FALSE(says(refusal));
    desktop.loginItem.refuses = true;
    click("Launch at login");
    EXPECT_TRUE(button("Launch at login")->isChecked());
    EXPECT_TRUE(says(refusal));
}

TEST_F(SettingsViewTest, TheVersionHasDefaults) {
    desktop.bundle.version = "2.3";
    desktop.bundle.build = "77";
    openSettings(SettingsTab::about);
    EXPECT_TRUE(says("Version 2.3 (77)"));
    desktop.bundle.version = desktop.bundle.build = std::nullopt;
    openSettings(SettingsTab::about);
    EXPECT_TRUE(says("Version 1.0.0 (1)"));
}

TEST_F(SettingsViewTest, TheKeyboardReachesTheShortcutsInReadingOrderAndWorksThem) {
    openSettings(SettingsTab::controls);
    EXPECT_EQ(tabStops().toStdString(),
              "Controls, General, About, Toggle Highlight shortcut, Clear shortcut, "
              "Toggle Laser shortcut, Clear shortcut, Restore default shortcuts, "
              "Refresh monitoring, Off, Highlight, Laser Pointer, Appearance, Effects");
    const auto press = [&](const char* name, Qt::Key key) {
        button(name)->setFocus(Qt::TabFocusReason);
        QTest::keyClick(QApplication::focusWidget(), key);
        update();
    };
    press("Clear shortcut", Qt::Key_Return);
    EXPECT_EQ(preferences().highlightShortcut, std::nullopt);
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, {}, {}, true);
    QCoreApplication::sendEvent(button("Restore default shortcuts"), &held);
    EXPECT_EQ(preferences().highlightShortcut, std::nullopt) << "a key that is held";
    press("Restore default shortcuts", Qt::Key_Space);
    EXPECT_EQ(preferences().highlightShortcut, Shortcut::defaultHighlight());
    press("Effects", Qt::Key_Space);
    EXPECT_TRUE(says("Click Effects"));
}

TEST_F(SettingsViewTest, TheKeyboardIsAtNoModeUnlessItGoesThere) {
    auto& settings = openSettings(SettingsTab::appearance);
    const auto expectHarmless = [&](CursorMode mode) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        EXPECT_EQ(state.mode().get(), mode);
    };
    setMode(CursorMode::highlight);
    expectHarmless(CursorMode::highlight);
    // A shortcut takes the slider away.
    named("Diameter")->setFocus();
    setMode(CursorMode::laser);
    expectHarmless(CursorMode::laser);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), QStringLiteral("Red"));
    button("Off")->setFocus();
    settings.hide();
    settings.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&settings));
    expectHarmless(CursorMode::laser);
}

TEST_F(SettingsViewTest, ControlWithTabOrWLeadsToTheNextTabOrOut) {
    auto& settings = openSettings(SettingsTab::general);
    button("Launch at login")->setFocus();
    const auto press = [&](Qt::Key key, Qt::KeyboardModifiers modifiers) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
        update();
        return state.selectedTab().get();
    };
    EXPECT_EQ(press(Qt::Key_Tab, Qt::ControlModifier), SettingsTab::about);
    EXPECT_EQ(press(Qt::Key_Tab, Qt::ControlModifier), SettingsTab::appearance);
    EXPECT_EQ(press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier), SettingsTab::about);
    EXPECT_TRUE(settings.isVisible());
    press(Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(settings.isVisible());
}

TEST_F(SettingsViewTest, KeysScrollThePageWhereverTheFocusIs) {
    openSettings(SettingsTab::appearance);
    auto* bar = scrolled()->verticalScrollBar();
    ASSERT_GT(bar->maximum(), 0);
    struct Step {
        Qt::Key key;
        int place;
    };
    for (const char* name : {"Controls", "Filled"}) {
        button(name)->setFocus();
        for (const auto& [key, place] :
             {Step{Qt::Key_End, bar->maximum()}, Step{Qt::Key_Home, 0},
              Step{Qt::Key_PageDown, std::min(bar->pageStep(), bar->maximum())},
              Step{Qt::Key_PageUp, 0}}) {
            QTest::keyClick(QApplication::focusWidget(), key);
            EXPECT_EQ(bar->value(), place) << name;
        }
    }
}

class ResetTest : public SettingsViewTest {
protected:
    void SetUp() override {
        SettingsViewTest::SetUp();
        state.setLaunchAtLogin(true);
        state.setMode(CursorMode::laser);
        change([](auto& preferences) {
            preferences.highlight.diameter = 99;
            preferences.laserShortcut = std::nullopt;
        });
        before_ = preferences();
        settings_ = &openSettings(SettingsTab::general);
        EXPECT_EQ(settings_->resetAlert(), nullptr);
        click("Reset all preferences…");
        ASSERT_NE(settings_->resetAlert(), nullptr);
        EXPECT_TRUE(QTest::qWaitForWindowActive(settings_->resetAlert()));
    }
    QMessageBox& alert() { return *settings_->resetAlert(); }
    void expectNothingHappened() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_EQ(settings_->resetAlert(), nullptr);
        EXPECT_EQ(preferences(), before_);
        EXPECT_EQ(state.mode().get(), CursorMode::laser);
        EXPECT_EQ(desktop.loginItem.current, LoginItemStatus::enabled);
    }

    AppPreferences before_;
    SettingsView* settings_ = nullptr;
};

TEST_F(ResetTest, ConfirmedBringsEverythingBackToItsDefault) {
    button("Reset", &alert())->click();
    update();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(settings_->resetAlert(), nullptr);
    EXPECT_EQ(preferences(), AppPreferences());
    EXPECT_EQ(state.mode().get(), CursorMode::off);
    EXPECT_EQ(desktop.loginItem.current, LoginItemStatus::notRegistered);
    EXPECT_EQ(checked(), (std::vector<std::string>{"Off", "General"}));
}

TEST_F(ResetTest, ChangesNothingUnlessItIsConfirmed) {
    const std::function<void()> ways[] = {
        [&] { button("Cancel", &alert())->click(); },
        [&] { QTest::keyClick(&alert(), Qt::Key_Return); },
        [&] { QTest::keyClick(&alert(), Qt::Key_Escape); },
        [&] { settings_->close(); }, // nobody could see any more what it asks about
    };
    for (const auto& leave : ways) {
        leave();
        expectNothingHappened();
        settings_->show();
        settings_->confirmReset();
    }
}

TEST_F(ResetTest, HoldsNothingElseUpAndFollowsTheLanguage) {
    state.handleShortcut(CursorMode::highlight);
    change([](auto& preferences) { preferences.language = AppLanguage::chinese; });
    EXPECT_EQ(state.mode().get(), CursorMode::highlight);
    EXPECT_TRUE(button("高亮")->isChecked());
    EXPECT_EQ(alert().text(), QStringLiteral("重置全部偏好设置？"));
    EXPECT_EQ(button("取消", &alert()), alert().escapeButton());
    button("重置", &alert())->click();
    update();
    EXPECT_TRUE(says("Language and Startup"));
}

} // namespace
} // namespace vantrel
