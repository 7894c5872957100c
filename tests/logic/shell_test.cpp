#include "app/shell/app_delegate.h"
#include "app/shell/popover_placement.h"
#include "app/shell/window_plan.h"
#include "support/headless_fixture.h"
#include "support/offscreen_application.h"

#include <QCursor>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <algorithm>
#include <ranges>

namespace vantrel {
namespace {

class ShellTest : public HeadlessTest {
protected:
    void SetUp() override {
        desktop.screens.set({screen(1, {0, 0, 800, 800})});
        desktop.userDefaults.setBoolean("welcomeDismissed", true);
        QCursor::setPos(400, 20);
    }
    void launch(const Command& command = {}) {
        delegate.applicationDidFinishLaunching(command);
        settle();
    }
    void settle() {
        desktop.mainQueue.run();
        QCoreApplication::processEvents();
    }
    std::vector<AppWindow> visibleWindows() {
        std::vector<AppWindow> visible;
        for (const auto window : {AppWindow::settings, AppWindow::welcome, AppWindow::help}) {
            if (delegate.window(window) != nullptr && delegate.window(window)->isVisible()) {
                visible.push_back(window);
            }
        }
        return visible;
    }
    void click() {
        desktop.statusItem.click();
        settle();
    }
    // Somewhere on the desktop, in no window of the program.
    void press(QPoint place, EventType type = EventType::leftMouseDown) {
        QCursor::setPos(place);
        desktop.eventMonitors.send({.type = type});
        settle();
    }
    bool popoverShown() { return delegate.popover().isVisible(); }
    void chooseFromMenu(const std::string& title) {
        const auto entry = std::ranges::find(desktop.statusItem.menu, title, &MenuEntry::title);
        ASSERT_NE(entry, desktop.statusItem.menu.end()) << title;
        const auto action = entry->action;
        action();
        settle();
    }
    std::vector<std::string> menuTitles() {
        std::vector<std::string> titles;
        std::ranges::transform(desktop.statusItem.menu, std::back_inserter(titles),
                               &MenuEntry::title);
        return titles;
    }

    AppDelegate delegate{desktop};
};

using Windows = std::vector<AppWindow>;
TEST_F(ShellTest, ALaunchForAModeShowsItWhateverTheLastOneWas) {
    for (const auto last : allCases<CursorMode>()) {
        delegate.state().setMode(last);
        launch({Command::Action::toggle, CursorMode::laser});
        EXPECT_EQ(delegate.state().mode().get(), CursorMode::laser);
    }
}

TEST_F(ShellTest, WindowsHaveTheirSizesAndComeBackAsTheyWereLeft) {
    launch();
    const std::pair<AppWindow, QSize> sizes[] = {{AppWindow::settings, {560, 640}},
                                                 {AppWindow::welcome, {560, 580}},
                                                 {AppWindow::help, {520, 540}}};
    for (const auto& [name, size] : sizes) {
        delegate.open(name);
        auto* window = delegate.window(name);
        EXPECT_EQ(window->size(), size);
        settle();
        EXPECT_LE((window->frameGeometry().center() - QPoint(399, 399)).manhattanLength(), 1);
        EXPECT_EQ(window->windowTitle(), QStringLiteral("Vantrel"));
        window->setGeometry(10, 30, 700, 700);
        EXPECT_EQ(window->minimumSize(), minimumContentSize);
        window->close();
        EXPECT_TRUE(window->isVisible()) << "it may be painting";
        settle();
        EXPECT_FALSE(window->isVisible());
        delegate.open(name);
        EXPECT_EQ(delegate.window(name), window);
        EXPECT_TRUE(window->isVisible());
        EXPECT_EQ(window->geometry(), QRect(10, 30, 700, 700));
        settle();
        ASSERT_FALSE(desktop.application.activated.empty());
        EXPECT_EQ(desktop.application.activated.back(), window->winId());
    }
}

TEST_F(ShellTest, TheMenuDoesWhatItSaysInTheLanguageOfTheInterface) {
    launch();
    const int menusSet = desktop.statusItem.menusSet;
    delegate.state().changePreferences(
        [](AppPreferences& preferences) { preferences.highlight.diameter = 100; });
    settle();
    EXPECT_EQ(desktop.statusItem.menusSet, menusSet) << "nothing in it has changed";
    EXPECT_EQ(menuTitles(),
              (std::vector<std::string>{"Off", "Highlight", "Laser", "", "Show Panel", "Settings…",
                                        "About Vantrel", "Help", "", "Quit"}));
    chooseFromMenu("Laser");
    EXPECT_EQ(delegate.state().mode().get(), CursorMode::laser);
    for (const auto& entry : desktop.statusItem.menu) {
        EXPECT_EQ(entry.checked.value_or(false), entry.title == "Laser") << entry.title;
    }
    chooseFromMenu("About Vantrel");
    EXPECT_EQ(delegate.state().selectedTab().get(), SettingsTab::about);
    delegate.window(AppWindow::settings)->close();
    chooseFromMenu("Help");
    EXPECT_EQ(visibleWindows(), Windows{AppWindow::help});
    chooseFromMenu("Show Panel");
    EXPECT_TRUE(popoverShown());
    chooseFromMenu("Quit");
    EXPECT_EQ(desktop.application.terminations, 1);
    delegate.state().changePreferences(
        [](AppPreferences& preferences) { preferences.language = AppLanguage::chinese; });
    settle();
    EXPECT_EQ(menuTitles(),
              (std::vector<std::string>{"关闭", "高亮", "激光", "", "显示面板", "设置…",
                                        "关于 Vantrel", "帮助", "", "退出"}));
}

TEST_F(ShellTest, ThePopoverOpensAndClosesWithTheItemAndFitsItsPanel) {
    desktop.statusItem.where = QRect(600, 0, 24, 24);
    launch();
    click();
    ASSERT_TRUE(popoverShown());
    const QRect off = delegate.popover().geometry();
    EXPECT_EQ(delegate.popover().contentsRect().width() - 2, 340);
    EXPECT_GE(off.top(), 24);
    delegate.state().setMode(CursorMode::highlight);
    settle();
    EXPECT_GT(delegate.popover().height(), off.height() + 100);
    EXPECT_EQ(delegate.popover().geometry().topLeft(), off.topLeft());
    click();
    EXPECT_FALSE(popoverShown());
    click();
    EXPECT_TRUE(popoverShown());
    delegate.open(AppWindow::help);
    EXPECT_FALSE(popoverShown());
}

TEST_F(ShellTest, AClickOnTheItemThatHasClosedThePopoverDoesNotOpenItAgain) {
    launch();
    click();
    press({400, 20});
    EXPECT_FALSE(popoverShown());
    EXPECT_EQ(desktop.eventMonitors.globalCount(), 0U) << "nothing to close";
    desktop.clock.advance(1); // a button that is held for long
    click();
    EXPECT_FALSE(popoverShown()) << "the second half of the click";
    click();
    EXPECT_TRUE(popoverShown());
    press({400, 20});
    desktop.clock.advance(3);
    click();
    EXPECT_TRUE(popoverShown()) << "another click";
    for (const auto button : {EventType::rightMouseDown, EventType::otherMouseDown}) {
        press({400, 20}, button);
        EXPECT_FALSE(popoverShown());
        chooseFromMenu("Show Panel");
        EXPECT_TRUE(popoverShown()) << "the menu shows it whatever closed it";
    }
    QTest::keyClick(const_cast<Popover*>(&delegate.popover()), Qt::Key_Escape);
    EXPECT_FALSE(popoverShown());
}

TEST_F(ShellTest, ThePopoverClosesWithoutTheKeyboardUnlessThePointerIsOnItsWayThere) {
    desktop.statusItem.where = QRect(600, 0, 24, 24);
    launch();
    struct Case {
        const char* what;
        QPoint pointer;
        bool closes;
    };
    QWidget other;
    auto& popover = const_cast<Popover&>(delegate.popover());
    const auto showWithoutKeyboard = [&](QPoint pointer) {
        chooseFromMenu("Show Panel");
        ASSERT_TRUE(QTest::qWaitForWindowActive(&popover));
        QCursor::setPos(pointer);
        other.show();
        other.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    };
    for (const auto& [what, pointer, closes] :
         {Case{"elsewhere", {100, 700}, true},
          {"at the item", {620, 3}, false},
          {"between the two", {610, 26}, false},
          {"in it, and the keyboard stays away", {610, 90}, true}}) {
        showWithoutKeyboard(pointer);
        EXPECT_EQ(QTest::qWaitFor([&] { return !popoverShown(); }, closes ? 5000 : 400), closes)
            << what;
    }
    desktop.application.hangs = true;
    showWithoutKeyboard({620, 3});
    EXPECT_TRUE(QTest::qWaitFor([&] { return !popoverShown(); }, 2500)) << "it hangs somewhere";
    EXPECT_EQ(desktop.application.hung.display, QGuiApplication::primaryScreen());
    EXPECT_EQ(desktop.application.hung.edges, Qt::RightEdge | Qt::TopEdge);
    desktop.application.hangs = false;
    showWithoutKeyboard({610, 90});
    settle();
    QTest::keyClick(&popover, Qt::Key_Escape);
    showWithoutKeyboard({620, 3});
    EXPECT_FALSE(QTest::qWaitFor([&] { return !popoverShown(); }, 400)) << "it is another time";
}

TEST_F(ShellTest, StartingAgainGivesTheKeyboardToTheWindowUsedLast) {
    launch();
    for (const auto window : {AppWindow::welcome, AppWindow::settings, AppWindow::help}) {
        delegate.open(window);
    }
    auto* used = delegate.window(AppWindow::settings);
    used->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(used));
    delegate.applicationShouldHandleReopen(true);
    EXPECT_EQ(desktop.application.activated.back(), used->winId());
    // One that lies behind another comes anew where the desktop would leave it there.
    const QSignalSpy appearances(used->windowHandle(), &QWindow::visibleChanged);
    auto* other = delegate.window(AppWindow::help);
    other->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(other));
    delegate.open(AppWindow::settings);
    EXPECT_TRUE(appearances.isEmpty());
    other->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(other));
    desktop.application.activates = false;
    delegate.open(AppWindow::settings);
    EXPECT_EQ(appearances.count(), 2);
    EXPECT_TRUE(used->isVisible());
}

TEST_F(ShellTest, SleepsAndWakesWithTheDesktopAndTakesOverWhatHasChanged) {
    launch();
    delegate.state().setMode(CursorMode::laser);
    desktop.workspace.sleep();
    desktop.workspace.wake();
    desktop.workspace.sleep();
    settle();
    EXPECT_TRUE(desktop.overlayWindows.windows().empty());
    desktop.workspace.wake();
    settle();
    EXPECT_EQ(desktop.overlayWindows.windows().size(), 1U);
    desktop.loginItem.current = LoginItemStatus::enabled;
    desktop.hotKeys.lose({.keyCode = 4, .modifiers = 6144});
    desktop.hotKeys.heldByOthers.clear();
    delegate.applicationDidBecomeActive();
    EXPECT_TRUE(delegate.state().preferences().get().launchAtLogin);
    EXPECT_EQ(delegate.state().hotkeyError().get(), std::nullopt);
    desktop.eventMonitors.refusesGlobal = true;
    delegate.state().setMode(CursorMode::highlight);
    desktop.eventMonitors.refusesGlobal = false;
    EXPECT_FALSE(delegate.state().clickAvailable().get());
    delegate.applicationDidBecomeActive();
    EXPECT_TRUE(delegate.state().clickAvailable().get());
}

TEST(WindowPlacement, IsInTheMiddleWithTheFrameAndNeverLargerThanTheScreen) {
    const QMargins frame(2, 20, 2, 6);
    struct Case {
        QRect available;
        QRect expected;
    };
    for (const auto& [available, expected] : {Case{{0, 0, 1280, 900}, {360, 137, 560, 640}},
                                              {{1280, 30, 800, 450}, {1400, 50, 560, 424}},
                                              {{0, 0, 500, 900}, {2, 137, 496, 640}}}) {
        EXPECT_EQ(windowPlacement({560, 640}, frame, available), expected);
    }
}

TEST(PopoverPlacement, IsBesideTheItemAndWhollyOnTheScreen) {
    const QRect screen(1000, 0, 800, 600);
    const QSize size(340, 400);
    struct Case {
        const char* what;
        QRect item;
        QRect expected;
    };
    const Case cases[] = {
        {"top panel", {1300, 0, 24, 24}, {1142, 28, 340, 400}},
        {"top right corner", {1776, 0, 24, 24}, {1460, 28, 340, 400}},
        {"bottom panel", {1300, 576, 24, 24}, {1142, 172, 340, 400}},
        {"bottom left corner", {1000, 576, 24, 24}, {1000, 172, 340, 400}},
        {"side panel, where neither has room", {1000, 290, 24, 24}, {1000, 0, 340, 400}},
        {"a pointer at the bottom edge", {1500, 599, 1, 1}, {1331, 195, 340, 400}},
    };
    for (const auto& [what, item, expected] : cases) {
        EXPECT_EQ(popoverPlacement(item, size, screen), expected) << what;
    }
    EXPECT_EQ(popoverPlacement({1300, 0, 24, 24}, {340, 900}, screen), QRect(1142, 0, 340, 600));
    EXPECT_EQ(popoverPlacement({1300, 400, 24, 24}, {340, 100}, screen), QRect(1142, 428, 340, 100))
        << "below, where there is room enough";

    // As far from a bar as from an item, wherever in the bar that is.
    const auto left = edgePlace({1142, 28, 340, 400}, screen);
    EXPECT_EQ(left.edges, Qt::LeftEdge | Qt::TopEdge);
    EXPECT_EQ(left.distance, QMargins(142, 4, 0, 0));
    const auto right = edgePlace({1331, 128, 340, 400}, screen);
    EXPECT_EQ(right.edges, Qt::RightEdge | Qt::BottomEdge);
    EXPECT_EQ(right.distance, QMargins(0, 0, 129, 72));
}

} // namespace
} // namespace vantrel
