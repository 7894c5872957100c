#include "support/shell_fixture.h"

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

class TrayTest : public ShellTest {
protected:
    // Returns with its icon in the tray.
    ChildProcess startInTray(const std::string& mode = "off") {
        auto program = start({.preferences = preferencesShowing(mode)});
        EXPECT_TRUE(tray->waitForIcon(name));
        return program;
    }
    [[nodiscard]] PixelRect icon() const { return tray->waitForIcon(name).value_or(PixelRect{}); }
    // Of two in short order at this one place the second is a double click.
    void clickIcon() {
        input.moveTo(centerOf(icon()));
        input.click();
    }
    // Returns with the keyboard in the popover.
    WindowState openPopover() {
        clickIcon();
        const auto opened = shown(popover);
        EXPECT_TRUE(opened && getsFocus(*opened));
        return opened.value_or(WindowState());
    }
    [[nodiscard]] Picture iconPicture() const { return captureScreen(watcher, icon()); }

    std::optional<Tray> tray{std::in_place, server};
};

TEST_F(TrayTest, TheIconTellsTheMode) {
    const auto program = startInTray();
    std::vector<Picture> seen;
    const auto isNew = [&] {
        return waitFor([&] { return !testing::Value(seen, testing::Contains(iconPicture())); });
    };
    for (const char letter : {'h', 'l'}) {
        seen.push_back(iconPicture());
        typeShortcut(letter);
        EXPECT_TRUE(isNew()) << letter;
    }
    typeShortcut('l');
    EXPECT_TRUE(waitFor([&] { return iconPicture() == seen.front(); }));
}

TEST_F(TrayTest, TheIconComesWithATrayThatStartsLaterAndComesBack) {
    tray->kill();
    const auto program = start({.preferences = preferencesShowing("highlight")});
    ASSERT_TRUE(shown(overlay));
    for (int i = 0; i < 2; ++i) {
        tray.emplace(server);
        ASSERT_TRUE(tray->waitForIcon(name));
        EXPECT_TRUE(typeIn(input, watcher, openPopover(), {XK_Escape}));
        EXPECT_TRUE(isGone(popover));
        tray->kill();
    }
    EXPECT_EQ(errors(), "");
}

TEST_F(TrayTest, AClickOnTheIconOpensThePopoverBesideItWhereverTheTrayIs) {
    for (const auto edge : {Tray::Edge::top, Tray::Edge::bottom}) {
        tray->kill();
        tray.emplace(server, edge);
        const auto program = startInTray();
        const PixelRect area = stateOf(watcher, openPopover().id)->area;
        EXPECT_TRUE(contains({0, 0, 1280, 900}, area));
        const PixelRect item = icon();
        const int distance = edge == Tray::Edge::top ? area.y - (item.y + item.height)
                                                     : item.y - (area.y + area.height);
        EXPECT_GE(distance, 0);
        EXPECT_LE(distance, 16);
        EXPECT_LE(area.x, item.x);
        EXPECT_GE(area.x + area.width, item.x + item.width);
    }
}

TEST_F(TrayTest, ThePopoverClosesOnAClickElsewhereOnEscapeAndOnTheIconAgain) {
    auto program = startInTray("highlight");
    const ClientWindow other(server.display(), {.area = {100, 100, 200, 200}});
    const std::vector<std::function<void(const WindowState&)>> ways{
        [&](const WindowState&) {
            input.moveTo({600, 50});
            input.click();
        },
        [&](const WindowState&) {
            input.moveTo({200, 200});
            input.click(Button::right);
        },
        [&](const WindowState& window) {
            EXPECT_TRUE(typeIn(input, watcher, window, {XK_Escape}));
        },
        [&](const WindowState&) { clickIcon(); }};
    for (std::size_t i = 0; i < ways.size(); ++i) {
        ways[i](openPopover());
        EXPECT_TRUE(isGone(popover)) << i;
        EXPECT_TRUE(staysHidden(popover)) << i;
    }
    clickIcon();
    EXPECT_TRUE(shown(popover));
    tray->kill(); // which gives its room to the windows
    EXPECT_TRUE(isGone(popover));
    EXPECT_TRUE(program.running());
    EXPECT_EQ(errors(), "");
}

// The press that opens it is also one of those that the program watches for effects of clicks.
TEST_F(TrayTest, ThePopoverIsNotClosedByTheClickThatOpenedIt) {
    const auto program = startInTray("highlight");
    for (int i = 0; i < 3; ++i) {
        const auto opened = openPopover();
        EXPECT_FALSE(waitUntilGone(watcher, popover, 450ms)) << i;
        ASSERT_TRUE(typeIn(input, watcher, opened, {XK_Escape})) << i;
        ASSERT_TRUE(isGone(popover)) << i;
    }
}

TEST_F(TrayTest, OpenWindowsKeepNoClickFromTheWindowBelowTheHighlight) {
    const auto program = startInTray("highlight");
    ASSERT_TRUE(typeIn(input, watcher, openPopover(), {XK_Control_L, ','}));
    ASSERT_TRUE(shown(settings));
    ClientWindow other(server.display(), {.area = {20, 20, 200, 200}});
    input.moveTo({100, 100});
    ASSERT_TRUE(waitFor([&] { return isMarked(watcher, {100, 100}, 0x336699); }));
    input.click();
    EXPECT_EQ(other.events(),
              (std::vector<InputEvent>{{InputEvent::Type::buttonPress, 1, {100, 100}},
                                       {InputEvent::Type::buttonRelease, 1, {100, 100}}}));
}

TEST_F(TrayTest, TheEndOfTheServerSavesWhatWasChangedWithEverythingOpen) {
    auto program = startInTray("highlight");
    ASSERT_TRUE(typeIn(input, watcher, openPopover(), {XK_Control_L, ','}));
    ASSERT_TRUE(shown(settings));
    clickIcon();
    ASSERT_TRUE(shown(popover));
    const Picture before = iconPicture();
    typeShortcut('l');
    ASSERT_TRUE(waitFor([&] { return iconPicture() != before; }));
    server.stop();
    EXPECT_EQ(program.wait(5s), (ExitStatus{.code = 0}));
    EXPECT_EQ(storedMode(), "laser");
}

} // namespace
} // namespace vantrel::desktop
