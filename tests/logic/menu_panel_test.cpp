#include "support/views_fixture.h"
#include "ui/components/stack.h"
#include "ui/components/style.h"

namespace vantrel {
namespace {

class MenuPanelTest : public ViewsTest {};

constexpr auto englishNotice =
    "In a Wayland session, effects and shortcuts work only while an X program has the keyboard. "
    "Effects appear only over windows of X programs, and hide when the pointer rests for 3 "
    "seconds.";
constexpr auto chineseNotice = "在 Wayland 会话中，效果和快捷键仅在 X 程序接收键盘输入时有效。"
                               "效果仅显示在 X 程序的窗口上，鼠标静止 3 秒后隐藏。";

TEST_F(MenuPanelTest, ASectionIsAsHighAsTheScreenAllows) {
    struct Case {
        CursorMode mode;
        std::optional<double> visible;
        int height;
    };
    const Case cases[] = {
        {CursorMode::highlight, 1000, 286},
        {CursorMode::highlight, 400, 76},
        {CursorMode::highlight, 636, 286},
        {CursorMode::highlight, 635, 285},
        {CursorMode::highlight, std::nullopt, 286},
        {CursorMode::laser, 1000, 208},
        {CursorMode::laser, 500, 150},
        {CursorMode::off, 1000, 76},
    };
    for (const auto& [mode, visible, height] : cases) {
        EXPECT_EQ(panelSectionHeight(mode, visible), height)
            << nameOf(mode) << " on " << visible.value_or(-1);
    }
}

TEST_F(MenuPanelTest, IsAsHighAsTheModeNeedsAndThenScrollsNothingInAnyFont) {
    struct Font {
        const char* family;
        int points;
    };
    for (const auto& [family, points] :
         {Font{"Noto Sans", 10}, Font{"Inter", 11}, Font{"Noto Sans CJK SC", 10},
          Font{"Noto Sans", 14}, Font{"DejaVu Sans", 10}}) {
        OffscreenApplication::useFont(family, points);
        auto& panel = open<MenuPanel>();
        for (const auto language : {AppLanguage::english, AppLanguage::chinese}) {
            change([&](auto& preferences) { preferences.language = language; });
            int lowest = 0;
            for (const auto mode : {CursorMode::off, CursorMode::laser, CursorMode::highlight}) {
                setMode(mode);
                panel.resize(panel.sizeHint());
                update();
                EXPECT_TRUE(points > 11 ? panel.width() > 340 : panel.width() == 340);
                EXPECT_GT(panel.height(), lowest);
                lowest = panel.height();
                EXPECT_EQ(scrolled()->height(), panelSectionHeight(mode, 1080, textScale()));
                EXPECT_EQ(scrolled()->verticalScrollBar()->maximum(), 0)
                    << nameOf(mode) << " in " << family << " " << nameOf(language);
            }
        }
    }
}

TEST_F(MenuPanelTest, FollowsTheScreenThatItIsOn) {
    setMode(CursorMode::highlight);
    auto& panel = open<MenuPanel>();
    auto small = screen(1, {0, 0, 800, 560});
    small.visibleFrame.height = 500; // without the desktop's own panel
    desktop.screens.set({small, screen(2, {800, 0, 1920, 1080})});
    update();
    EXPECT_EQ(scrolled()->height(), 150);
    EXPECT_GT(scrolled()->verticalScrollBar()->maximum(), 0);
    EXPECT_LT(panel.sizeHint().height(), 500);
}

TEST_F(MenuPanelTest, ASectionShowsWhatChangedWhileItWasAway) {
    setMode(CursorMode::laser);
    open<MenuPanel>();
    setMode(CursorMode::off);
    change([](auto& preferences) { preferences.laser.diameter = 20; });
    setMode(CursorMode::laser);
    EXPECT_TRUE(says("20 pt"));
    change([](auto& preferences) { preferences.laser.diameter = 8; });
    EXPECT_TRUE(says("8 pt"));
}

TEST_F(MenuPanelTest, TellsThatClicksCannotBeSeenOnlyWhileTheyAreWanted) {
    constexpr auto notice = "Click monitoring could not start. Retry in Settings.";
    desktop.eventMonitors.refusesGlobal = true;
    open<MenuPanel>();
    EXPECT_FALSE(says(notice) || says(englishNotice));
    setMode(CursorMode::highlight);
    EXPECT_TRUE(says(notice));
    desktop.eventMonitors.refusesGlobal = false;
    state.apply();
    update();
    EXPECT_FALSE(says(notice));
}

class WaylandPanelTest : public ViewsTest {
protected:
    WaylandPanelTest() : ViewsTest(true) {}
};

TEST_F(WaylandPanelTest, TellsWhatWorksUntilThatIsDismissedForGood) {
    open<MenuPanel>();
    EXPECT_TRUE(says(englishNotice));
    change([](auto& preferences) { preferences.language = AppLanguage::chinese; });
    EXPECT_TRUE(says(chineseNotice));
    click("关闭提示");
    EXPECT_FALSE(says(chineseNotice));
    EXPECT_TRUE(desktop.userDefaults.boolean("waylandNoticeDismissed"));
    setMode(CursorMode::highlight);
    EXPECT_FALSE(says(chineseNotice));
    open<MenuPanel>();
    EXPECT_FALSE(says(chineseNotice));
}

TEST_F(WaylandPanelTest, PromisesNothingWithoutAnXServer) {
    desktop.application.session.xwayland = false;
    desktop.application.compositorName = "sway";
    open<MenuPanel>();
    EXPECT_TRUE(says("Nothing in this session can draw the marks or take the shortcuts. Commands "
                     "and settings work. From sway 1.11 on, effects appear over every window."));
    desktop.marks.set(MarksState::off);
    update();
    click("Switch On");
    EXPECT_EQ(desktop.marks.enables, 1);
}

TEST_F(WaylandPanelTest, TellsWhenThePointerHasBeenUnknownForAWhile) {
    desktop.application.session = {.wayland = true, .layerShell = true, .cursorSessions = true};
    open<MenuPanel>();
    const auto isSaid = [&](double seconds) {
        desktop.displayLinks.fire();
        desktop.mainQueue.advance(seconds);
        update();
        return says("The compositor does not tell where the pointer is, as while something records "
                    "it, or without a mouse. Let the recorder leave the pointer out.");
    };
    setMode(CursorMode::laser);
    EXPECT_FALSE(isSaid(3));
    desktop.pointer.known = false;
    EXPECT_FALSE(isSaid(1));
    EXPECT_TRUE(isSaid(1.5));
    EXPECT_EQ(state.means().pointer, Means::none);
    open<SettingsView>();
    EXPECT_TRUE(isSaid(0));
    setMode(CursorMode::off);
    EXPECT_FALSE(isSaid(3));
    setMode(CursorMode::laser);
    EXPECT_TRUE(isSaid(3)) << "from the beginning";
    desktop.pointer.known = true;
    EXPECT_FALSE(isSaid(0));
}

TEST_F(WaylandPanelTest, OffersMarksThatTheDesktopCouldDraw) {
    constexpr auto offer = "GNOME can draw the marks over every window, and take the shortcuts "
                           "everywhere. The extension that does so is switched off.";
    desktop.userDefaults.setBoolean("waylandNoticeDismissed", true);
    open<MenuPanel>();
    desktop.marks.set(MarksState::off);
    update();
    EXPECT_TRUE(says(offer));
    click("Switch On");
    EXPECT_EQ(desktop.marks.enables, 1);
    open<SettingsView>();
    EXPECT_TRUE(says(offer));
    open<MenuPanel>();
    desktop.marks.set(MarksState::needsLogin);
    update();
    EXPECT_TRUE(says("Log out and in again once: then GNOME draws the marks over every window."));
    EXPECT_FALSE(says("Switch On"));
    change([](auto& preferences) { preferences.language = AppLanguage::chinese; });
    EXPECT_TRUE(says("请注销并重新登录一次，之后 GNOME 会在所有窗口上绘制标记。"));
    click("关闭提示");
    EXPECT_TRUE(desktop.userDefaults.boolean("marksNoticeDismissed"));
    EXPECT_FALSE(says("请注销并重新登录一次，之后 GNOME 会在所有窗口上绘制标记。"));
    open<SettingsView>();
    EXPECT_TRUE(says("请注销并重新登录一次，之后 GNOME 会在所有窗口上绘制标记。"));
    desktop.userDefaults.setBoolean("marksNoticeDismissed", false);
    desktop.userDefaults.setBoolean("waylandNoticeDismissed", false);
    desktop.marks.set(MarksState::available);
    update();
    EXPECT_FALSE(says(chineseNotice));
}

TEST_F(WaylandPanelTest, AsksForTheRoomOfTheNoticeBeforeItIsOnTheScreen) {
    for (const auto language : {AppLanguage::english, AppLanguage::chinese}) {
        change([&](auto& preferences) { preferences.language = language; });
        MenuPanel unseen(view);
        settleLayout(unseen);
        const auto& panel = open<MenuPanel>();
        settleLayout(*window);
        EXPECT_EQ(unseen.sizeHint(), panel.sizeHint()) << nameOf(language);
    }
}

TEST_F(WaylandPanelTest, TheNoticeTakesItsRoomFromTheSectionOnASmallScreenOnly) {
    setMode(CursorMode::highlight);
    auto& panel = open<MenuPanel>();
    for (const auto language : {AppLanguage::english, AppLanguage::chinese}) {
        change([&](auto& preferences) { preferences.language = language; });
        desktop.screens.set({screen(1, {0, 0, 1920, 1080})});
        update();
        EXPECT_EQ(scrolled()->height(), 286);
        EXPECT_EQ(scrolled()->verticalScrollBar()->maximum(), 0);
        desktop.screens.set({screen(1, {0, 0, 800, 500})});
        update();
        EXPECT_LT(scrolled()->height(), 150);
        EXPECT_LT(panel.sizeHint().height(), 500);
    }
    click("关闭提示");
    EXPECT_EQ(scrolled()->height(), 150);
    EXPECT_LT(panel.sizeHint().height(), 500);
}

TEST_F(MenuPanelTest, LeadsToTheWindowsAndToTheEnd) {
    std::vector<AppWindow> opened;
    state.openWindow = [&](AppWindow asked) { opened.push_back(asked); };
    open<MenuPanel>();
    for (auto* settings : window->findChildren<QAbstractButton*>()) {
        if (settings->accessibleName() == QStringLiteral("Settings")) {
            settings->click();
        }
    }
    click("Help");
    EXPECT_EQ(opened, (std::vector{AppWindow::settings, AppWindow::settings, AppWindow::help}));
    click("Quit");
    EXPECT_EQ(desktop.application.terminations, 1);
}

TEST_F(MenuPanelTest, TheKeyboardComesToEveryControlInReadingOrder) {
    open<MenuPanel>();
    setMode(CursorMode::highlight);
    EXPECT_EQ(
        tabStops().toStdString(),
        "Settings, Off, Highlight, Laser Pointer, Filled, Ring, Glow, Yellow, Green, Blue, Red, "
        "Purple, White, Custom color, Diameter, Opacity, Hide when idle, Click effects, "
        "Settings, Help, Quit");
}

TEST_F(MenuPanelTest, TheKeyboardBringsIntoViewWhatItComesTo) {
    desktop.screens.set({screen(1, {0, 0, 800, 500})});
    setMode(CursorMode::highlight);
    open<MenuPanel>();
    const auto isSeen = [&](const QWidget* part) {
        return scrolled()->viewport()->rect().contains(
            QRect(part->mapTo(scrolled()->viewport(), QPoint()), part->size()));
    };
    const auto* last = named("Click effects");
    named("Click effects")->setFocus(Qt::MouseFocusReason);
    EXPECT_FALSE(isSeen(last));
    button("Help")->setFocus();
    QTest::keyClick(window.get(), Qt::Key_Backtab);
    QTest::keyClick(window.get(), Qt::Key_Backtab);
    EXPECT_TRUE(last->hasFocus());
    EXPECT_TRUE(isSeen(last));
}

} // namespace
} // namespace vantrel
