#include "support/shell_fixture.h"
#include "testdesk/core_application.h"
#include "testdesk/displays.h"
#include "testdesk/status_notifier_host.h"

#include <thread>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

// On a desktop whose panel shows status notifier items.
class NotifierTest : public ShellTest {
protected:
    using ShellTest::ShellTest;

    // Returns with its item in the panel.
    ChildProcess startInPanel(const std::string& mode = "off") {
        auto program = start({.preferences = preferencesShowing(mode),
                              .environment = {{"DBUS_SESSION_BUS_ADDRESS", bus.address()}}});
        EXPECT_TRUE(host->waitForItem());
        return program;
    }
    [[nodiscard]] StatusNotifierItem item() const { return host->waitForItem().value(); }
    [[nodiscard]] bool isDescribedAs(const std::string& text) const {
        return waitFor([&] { return item().toolTip() == text; });
    }

private:
    CoreApplication application_;

protected:
    PrivateBus bus{server.folder() / "runtime" / "bus"};
    std::optional<StatusNotifierHost> host{std::in_place, bus};
};

TEST_F(NotifierTest, TheItemTellsTheModeAndComesBackWithThePanel) {
    const auto program = startInPanel();
    EXPECT_TRUE(isDescribedAs("Vantrel off"));
    const auto off = item().icons();
    EXPECT_FALSE(off.empty());
    typeShortcut('l');
    EXPECT_TRUE(isDescribedAs("Vantrel laser"));
    EXPECT_NE(item().icons(), off);
    EXPECT_TRUE(host->hasHeard("NewIcon"));
    host.reset();
    typeShortcut('h');
    ASSERT_TRUE(stores("highlight"));
    host.emplace(bus);
    EXPECT_TRUE(isDescribedAs("Vantrel highlight"));
    EXPECT_TRUE(item().activate({640, 890}));
    EXPECT_TRUE(shown(popover));
}

TEST_F(NotifierTest, APanelThatStartsLaterOrInSeveralStepsGetsTheItem) {
    using Start = StatusNotifierHost::Start;
    for (const auto panel : {Start::complete, Start::withoutHost}) {
        host.reset();
        const auto program = start({.environment = {{"DBUS_SESSION_BUS_ADDRESS", bus.address()}}});
        ASSERT_TRUE(shown(overlay));
        host.emplace(bus, panel);
        if (panel != Start::complete) {
            // Where the program could ask too early, and once for all.
            std::this_thread::sleep_for(300ms);
            host->complete();
        }
        EXPECT_TRUE(isDescribedAs("Vantrel highlight"));
    }
}

TEST_F(NotifierTest, APanelThatHangsHoldsUpNothing) {
    host.reset();
    host.emplace(bus, StatusNotifierHost::Start::hanging);
    const auto program = start({.environment = {{"DBUS_SESSION_BUS_ADDRESS", bus.address()}}});
    const auto answers = [&](char letter, std::string_view mode) {
        typeShortcut(letter);
        return waitFor([&] { return storedMode() == mode; }, 5s);
    };
    ASSERT_TRUE(shown(overlay, 5s));
    EXPECT_TRUE(answers('l', "laser"));
    host->complete();
    EXPECT_TRUE(isDescribedAs("Vantrel laser"));
    host->hang();
    EXPECT_TRUE(answers('h', "highlight"));
    host->complete();
    EXPECT_TRUE(isDescribedAs("Vantrel highlight"));
}

TEST_F(NotifierTest, ATrayOfXHasTheIconWhileNoPanelShowsTheItem) {
    const Tray tray(server);
    const auto program = startInPanel();
    const auto iconGoes = [&] { return waitFor([&] { return !tray.iconArea(name); }); };
    EXPECT_TRUE(iconGoes());
    host.reset();
    EXPECT_TRUE(tray.waitForIcon(name));
    host.emplace(bus, StatusNotifierHost::Start::withoutHost);
    EXPECT_TRUE(tray.waitForIcon(name));
    host->complete();
    EXPECT_TRUE(iconGoes());
    EXPECT_TRUE(isDescribedAs("Vantrel off"));
}

TEST_F(NotifierTest, ActivationOpensThePopoverNearThePointerAndClosesItAgain) {
    const auto program = startInPanel();
    for (const PixelPoint place : {PixelPoint{640, 5}, PixelPoint{1275, 895}, PixelPoint{3, 895}}) {
        input.moveTo(place);
        ASSERT_TRUE(item().activate(place));
        const auto opened = shown(popover);
        ASSERT_TRUE(opened);
        ASSERT_TRUE(getsFocus(*opened));
        const PixelRect area = stateOf(watcher, opened->id)->area;
        EXPECT_TRUE(contains({0, 0, 1280, 900}, area));
        EXPECT_TRUE(contains({area.x - 16, area.y - 16, area.width + 32, area.height + 32},
                             {place.x, place.y, 1, 1}));
        ASSERT_TRUE(item().activate(place));
        EXPECT_TRUE(isGone(popover));
    }
}

TEST_F(NotifierTest, TheMenuShowsTheModeAndDoesWhatItSays) {
    auto program = startInPanel();
    ASSERT_TRUE(waitFor([&] { return !item().menu().empty(); }));
    EXPECT_TRUE(item().choose("Laser"));
    EXPECT_TRUE(stores("laser"));
    EXPECT_TRUE(waitFor([&] {
        return std::ranges::all_of(item().menu(), [](const MenuEntry& entry) {
            return entry.checked.value_or(false) == (entry.label == "Laser");
        });
    }));
    EXPECT_TRUE(host->hasHeard("ItemsPropertiesUpdated")) << "panels keep what they have";
    EXPECT_EQ(std::ranges::count(item().menu(), "Control+,", &MenuEntry::shortcut), 1);
    EXPECT_TRUE(item().choose("About Vantrel"));
    EXPECT_TRUE(shown(settings));
    EXPECT_TRUE(item().choose("Quit"));
    EXPECT_EQ(program.wait(5s), (ExitStatus{.code = 0}));
    EXPECT_EQ(errors(), "");
}

TEST_F(NotifierTest, TheProgramGoesOnWithoutItsBus) {
    auto program = startInPanel();
    host.reset();
    bus.stop();
    for (const auto& [letter, mode] : {std::pair('h', "highlight"), std::pair('l', "laser")}) {
        typeShortcut(letter);
        EXPECT_TRUE(stores(mode));
    }
    EXPECT_EQ(start({.preferences = nullptr, .log = "second"}).wait(5s), (ExitStatus{.code = 0}));
    EXPECT_TRUE(shown(settings));
    EXPECT_TRUE(program.running());
}

class UnpluggedDisplayTest : public NotifierTest {
protected:
    UnpluggedDisplayTest() : NotifierTest(PrivateServer::virtualOutputs()) {}
};

TEST_F(UnpluggedDisplayTest, TakesThePopoverAwayAndNothingElse) {
    const Output first{.size = {1280, 900}};
    setOutputs(watcher, {first, {.size = {1280, 900}, .position = {1280, 0}}});
    auto program = startInPanel("highlight");
    input.moveTo({2500, 890});
    ASSERT_TRUE(item().activate({2500, 890}));
    const auto opensIn = [&](const PixelRect& screen) {
        const auto opened = shown(popover);
        return opened && waitFor([&] {
                   const auto state = stateOf(watcher, opened->id);
                   return state && contains(screen, state->area);
               });
    };
    EXPECT_TRUE(opensIn({1280, 0, 1280, 900}));
    setOutputs(watcher, {first});
    EXPECT_TRUE(isGone(popover));
    input.moveTo({640, 5});
    ASSERT_TRUE(item().activate({640, 5}));
    EXPECT_TRUE(opensIn({0, 0, 1280, 900}));
    EXPECT_TRUE(program.running());
}

} // namespace
} // namespace vantrel::desktop
