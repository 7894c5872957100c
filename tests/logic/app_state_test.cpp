#include "app/state/app_state.h"
#include "app/state/program_status.h"
#include "overlay/effect.h"
#include "preferences/preference_encoding.h"
#include "support/headless_fixture.h"

#include <fstream>

namespace vantrel {
namespace {

constexpr auto key = "Vantrel.preferences.v1";

class AppStateTest : public HeadlessTest {
protected:
    void SetUp() override {
        desktop.screens.set({screen(1, {0, 0, 800, 600})});
        launch();
    }
    void TearDown() override {
        state.reset();
        EXPECT_TRUE(desktop.overlayWindows.windows().empty());
        HeadlessTest::TearDown();
    }
    // A new run of the program, without startUp().
    void launch() {
        state.reset();
        state = std::make_unique<AppState>(store, desktop);
        state->openWindow = [this](AppWindow window) { opened.push_back(window); };
    }
    void change(auto change) { state->changePreferences(change); }
    std::optional<AppPreferences> saved() {
        const auto bytes = desktop.userDefaults.data(key);
        return bytes ? decodePreferences(*bytes) : std::nullopt;
    }
    bool monitorsClicks() { return desktop.eventMonitors.globalCount() == 2; }

    SettingsStore store{desktop.userDefaults, key};
    std::unique_ptr<AppState> state;
    std::vector<AppWindow> opened;
};

constexpr headless::Combination controlOptionH{4, 6144};
constexpr headless::Combination controlOptionL{37, 6144};

TEST_F(AppStateTest, ShortcutsToggleTheirModeAndSwitchStraightToIt) {
    state->startUp();
    struct Case {
        CursorMode current;
        headless::Combination pressed;
        CursorMode expected;
    };
    const Case cases[] = {
        {CursorMode::off, controlOptionH, CursorMode::highlight},
        {CursorMode::off, controlOptionL, CursorMode::laser},
        {CursorMode::highlight, controlOptionH, CursorMode::off},
        {CursorMode::highlight, controlOptionL, CursorMode::laser},
        {CursorMode::laser, controlOptionH, CursorMode::highlight},
        {CursorMode::laser, controlOptionL, CursorMode::off},
    };
    for (const auto& [current, pressed, expected] : cases) {
        state->setMode(current);
        EXPECT_TRUE(desktop.hotKeys.press(pressed));
        EXPECT_EQ(state->mode().get(), expected);
        EXPECT_EQ(state->preferences().get().lastMode, expected);
        EXPECT_EQ(desktop.overlayWindows.windows().empty(), expected == CursorMode::off);
    }
}

TEST_F(AppStateTest, SeesClicksOnlyWhereTheyMatter) {
    struct Case {
        CursorMode mode;
        bool idleHide;
        ClickSettings click;
        bool wanted;
    };
    const Case cases[] = {
        {CursorMode::highlight, false, {ClickStyle::ripple, true, true}, true},
        {CursorMode::highlight, false, {ClickStyle::pulse, false, true}, true},
        {CursorMode::highlight, false, {ClickStyle::ripple, false, false}, false},
        {CursorMode::highlight, false, {ClickStyle::none, true, true}, false},
        {CursorMode::highlight, true, {ClickStyle::none, false, false}, true},
        {CursorMode::laser, true, {ClickStyle::ripple, true, true}, false},
    };
    for (const auto& [mode, idleHide, click, wanted] : cases) {
        change([&](AppPreferences& preferences) {
            preferences.highlight.idleHide = idleHide;
            preferences.click = click;
        });
        state->setMode(mode);
        EXPECT_EQ(monitorsClicks(), wanted);
        EXPECT_TRUE(state->clickAvailable().get());
    }
    state->setMode(CursorMode::off);
    EXPECT_EQ(desktop.eventMonitors.globalCount(), 0U);
}

TEST_F(AppStateTest, LeavesTheMarksToADesktopThatDrawsThemForAsLongAsItDoes) {
    auto& marks = desktop.marks;
    const auto drawnHere = [this] { return !desktop.overlayWindows.windows().empty(); };
    const auto wanted = [this] {
        return effectOf(state->mode().get(), state->preferences().get());
    };
    marks.set(MarksState::available);
    EXPECT_EQ(marks.shown, std::nullopt);
    state->startUp();
    state->setMode(CursorMode::highlight);
    change([](auto& preferences) { preferences.highlight.diameter = 100; });
    EXPECT_EQ(marks.shown, wanted());
    EXPECT_FALSE(drawnHere());
    EXPECT_EQ(desktop.eventMonitors.globalCount(), 0U);
    EXPECT_TRUE(state->clickAvailable().get());
    marks.hearsPresses = false;
    marks.set(MarksState::available);
    EXPECT_FALSE(state->clickAvailable().get());
    marks.set(MarksState::off);
    EXPECT_TRUE(drawnHere());
    EXPECT_TRUE(monitorsClicks());
    EXPECT_TRUE(state->clickAvailable().get());
    state->setMode(CursorMode::laser);
    marks.set(MarksState::available);
    EXPECT_FALSE(drawnHere());
    EXPECT_EQ(marks.shown, wanted());
    state->suspend();
    EXPECT_EQ(marks.shown, std::nullopt);
    marks.set(MarksState::off);
    EXPECT_FALSE(drawnHere());
    marks.set(MarksState::available);
    state->wake();
    EXPECT_EQ(marks.shown, wanted());
    state->setMode(CursorMode::off);
    EXPECT_EQ(marks.shown, std::nullopt);
    // A desktop that hung may do late what it was told.
    state->setMode(CursorMode::highlight);
    marks.set(MarksState::failed);
    state->setMode(CursorMode::off);
    EXPECT_EQ(marks.shown, std::nullopt);
}

TEST_F(AppStateTest, ShowsEachChangeAtOnceAndTheClicksThatAreWanted) {
    state->setMode(CursorMode::highlight);
    const auto& layers = desktop.overlayWindows.windows()[0]->rootLayer()->sublayers();
    change([](AppPreferences& preferences) {
        preferences.highlight.diameter = 100;
        preferences.click.right = false;
    });
    EXPECT_GT(layers[0]->bounds().width, 99);
    desktop.eventMonitors.send({EventType::rightMouseDown, {400, 300}});
    EXPECT_EQ(layers.size(), 1U);
    desktop.eventMonitors.send({EventType::leftMouseDown, {400, 300}});
    EXPECT_EQ(layers.size(), 2U);
    state->suspend();
    EXPECT_EQ(desktop.eventMonitors.globalCount(), 0U);
}

TEST_F(AppStateTest, SavesOnceAfterTheLastOfManyChanges) {
    for (int i = 1; i <= 10; ++i) {
        change([i](AppPreferences& preferences) { preferences.highlight.diameter = 50 + i; });
        desktop.mainQueue.advance(0.02);
    }
    desktop.mainQueue.advance(0.22);
    EXPECT_EQ(desktop.userDefaults.writes, 0);
    desktop.mainQueue.advance(0.02);
    EXPECT_EQ(desktop.userDefaults.writes, 1);
    EXPECT_EQ(saved()->highlight.diameter, 60);
    desktop.mainQueue.advance(10);
    EXPECT_EQ(desktop.userDefaults.writes, 1);
}

TEST_F(AppStateTest, SavesAtOnceBeforeSleepAndComesBackAfterIt) {
    state->startUp();
    state->setMode(CursorMode::off);
    desktop.mainQueue.advance(10);
    EXPECT_EQ(desktop.userDefaults.writes, 0) << "nothing has changed";
    state->setMode(CursorMode::laser);
    state->suspend();
    EXPECT_EQ(desktop.userDefaults.writes, 1);
    EXPECT_EQ(saved()->lastMode, CursorMode::laser);
    desktop.screens.set({screen(2, {0, 0, 800, 600})});
    EXPECT_TRUE(desktop.overlayWindows.windows().empty());
    EXPECT_EQ(state->mode().get(), CursorMode::laser);
    desktop.mainQueue.advance(10);
    EXPECT_EQ(desktop.userDefaults.writes, 1);
    state->wake();
    EXPECT_EQ(desktop.overlayWindows.windows().size(), 1U);
    EXPECT_EQ(desktop.displayLinks.count(), 1U);

    launch();
    EXPECT_EQ(state->mode().get(), CursorMode::off);
    EXPECT_TRUE(desktop.overlayWindows.windows().empty());
    state->startUp();
    EXPECT_EQ(state->mode().get(), CursorMode::laser);
    EXPECT_EQ(desktop.overlayWindows.windows().size(), 1U);
}

TEST_F(AppStateTest, IsToldInOneLineWithAShortcutThatWasLost) {
    desktop.bundle.version = "2.3.4";
    desktop.bundle.build = "56";
    EXPECT_EQ(
        toJson(programStatus(*state, desktop)),
        R"({"mode":"off","marks":"x11","marksMissing":null,"pointer":"x11","presses":"x11",)"
        R"("shortcuts":"x11","clickAvailable":false,"hotkeyError":null,"version":"2.3.4","build":"56"})");
    desktop.hotKeys.lose(controlOptionH);
    EXPECT_NE(toJson(programStatus(*state, desktop)).find(R"("hotkeyError":"registration")"),
              std::string::npos);
    EXPECT_TRUE(desktop.hotKeys.press(controlOptionL));
    desktop.hotKeys.heldByOthers.clear();
    state->setMode(CursorMode::off);
    EXPECT_EQ(state->hotkeyError().get(), std::nullopt) << "it is back";
}

TEST_F(AppStateTest, TakesTheLoginItemAsItIs) {
    desktop.loginItem.current = LoginItemStatus::enabled;
    state->startUp();
    EXPECT_TRUE(state->preferences().get().launchAtLogin);
    desktop.loginItem.current = LoginItemStatus::notFound;
    state->syncLaunchAtLogin();
    EXPECT_FALSE(state->preferences().get().launchAtLogin);
    EXPECT_EQ(state->systemMessage().get(), std::nullopt);
    desktop.mainQueue.advance(1);
    EXPECT_EQ(desktop.userDefaults.writes, 1);
    state->syncLaunchAtLogin();
    EXPECT_EQ(desktop.mainQueue.waiting(), 0U);
}

TEST_F(AppStateTest, ReportsWhatBecameOfTheLoginItem) {
    const auto message = [this] { return state->systemMessage().get(); };
    state->setLaunchAtLogin(true);
    EXPECT_TRUE(state->preferences().get().launchAtLogin);
    EXPECT_EQ(message(), std::nullopt);

    state->setLaunchAtLogin(false);
    desktop.loginItem.registered = LoginItemStatus::requiresApproval;
    state->setLaunchAtLogin(true);
    EXPECT_FALSE(state->preferences().get().launchAtLogin);
    const auto* const approval = "Approve this app in System Settings → General → Login Items.";
    EXPECT_EQ(message(), approval);
    desktop.loginItem.registered = LoginItemStatus::enabled;
    state->setLaunchAtLogin(true);
    EXPECT_EQ(message(), approval);
    std::vector<std::optional<std::string>> told;
    const auto watching =
        state->systemMessage().observe([&](const auto& text) { told.push_back(text); });
    EXPECT_EQ(told, std::vector{message()});

    change([](AppPreferences& preferences) { preferences.language = AppLanguage::chinese; });
    desktop.loginItem.refuses = true;
    desktop.loginItem.current = LoginItemStatus::enabled;
    state->setLaunchAtLogin(false);
    EXPECT_TRUE(state->preferences().get().launchAtLogin);
    EXPECT_EQ(message(), "无法修改登录启动状态。请从已安装的应用运行并重试。");
}

TEST_F(AppStateTest, ShowsTheHelpWhereNothingOpensALink) {
    const auto links = std::filesystem::path(testing::TempDir()) / "links of one test.plist";
    std::ofstream(links) << "<plist><dict><key>TermsURL</key>"
                            "<string>https://example.org/terms</string></dict></plist>";
    desktop.bundle.resources["ReleaseConfiguration.plist"] = links;
    state->openLink(ReleaseLink::terms);
    EXPECT_TRUE(opened.empty());
    desktop.workspace.opensUrls = false;
    state->openLink(ReleaseLink::terms);
    EXPECT_EQ(opened, std::vector{AppWindow::help});
}

} // namespace
} // namespace vantrel
