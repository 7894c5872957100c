#include "input/hotkey_manager.h"
#include "support/input_fixture.h"

#include <optional>

#include <X11/keysym.h>
#include <xcb/xinput.h>

namespace vantrel::desktop {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint8_t keyA = 38;
constexpr std::uint8_t keyH = 43;
constexpr std::uint16_t controlAlt = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;

class HotKeysDesktopTest : public InputDesktopTest, private x11::EventHandler {
protected:
    void SetUp() override {
        InputDesktopTest::SetUp();
        counted_ = connection->addHandler(*this);
        manager.emplace(x11->hotKeys);
        manager->onMode = [this](CursorMode mode) { modes.push_back(mode); };
    }
    void TearDown() override {
        manager.reset();
        counted_.cancel();
        InputDesktopTest::TearDown();
    }

    std::vector<CursorMode> pressed(std::uint32_t letter, std::uint32_t second = XK_Alt_L) {
        modes.clear();
        input.typeChord({XK_Control_L, second, letter});
        settle();
        return modes;
    }
    void tap(std::uint32_t keysym) {
        input.pressKey(keysym);
        input.releaseKey(keysym);
    }

    std::optional<HotkeyManager> manager;
    AppPreferences preferences;
    std::vector<CursorMode> modes;
    int keyEvents = 0; // that this process received

private:
    void handleEvent(const xcb_generic_event_t& event) override {
        const auto number = x11::eventNumber(event);
        keyEvents += static_cast<int>(number == XCB_KEY_PRESS || number == XCB_KEY_RELEASE ||
                                      number == XCB_GE_GENERIC);
    }

    Subscription counted_;
};

TEST_F(HotKeysDesktopTest, WorkInAnotherProgramsWindowWhicheverLocksAreOn) {
    runProgram({"xmodmap", "-e", "add mod3 = Scroll_Lock"});
    ASSERT_EQ(manager->register_(preferences), std::nullopt);
    for (int locks = 0; locks < 8; ++locks) {
        EXPECT_THAT(pressed('h'), ElementsAre(CursorMode::highlight)) << locks;
        EXPECT_THAT(pressed('l'), ElementsAre(CursorMode::laser)) << locks;
        // One lock changes at each turn, and all their combinations come up.
        tap(locks % 2 == 0 ? XK_Caps_Lock : locks % 4 == 1 ? XK_Num_Lock : XK_Scroll_Lock);
    }
    EXPECT_FALSE(otherReceived(InputEvent::Type::keyPress, keyH));
    EXPECT_THAT(pressed('h', XK_Super_L), IsEmpty());
    EXPECT_TRUE(otherReceived(InputEvent::Type::keyPress, keyH));
}

TEST_F(HotKeysDesktopTest, SeeNoOtherKey) {
    ASSERT_EQ(manager->register_(preferences), std::nullopt);
    for (const auto letter : {U'a', U'h', U'l'}) {
        tap(letter);
        input.typeChord({XK_Control_L, letter});
    }
    settle();
    EXPECT_EQ(keyEvents, 0);
}

TEST_F(HotKeysDesktopTest, AreReportedOnceHoweverLongTheyAreHeld) {
    ASSERT_EQ(manager->register_(preferences), std::nullopt);
    for (const auto key : std::vector<std::uint32_t>{XK_Control_L, XK_Alt_L, 'h'}) {
        input.pressKey(key);
    }
    // The press and repetitions.
    ASSERT_TRUE(runUntil([this] { return keyEvents > 3; }));
    EXPECT_EQ(modes.size(), 1U);
    input.releaseKey('h');
    tap('a');
    EXPECT_TRUE(otherReceived(InputEvent::Type::keyPress, keyA)) << "the keyboard is free again";
    input.pressKey('h');
    EXPECT_TRUE(runUntil([this] { return modes.size() == 2; }));
    input.releaseKey('h');
    settle();
    EXPECT_FALSE(otherReceived(InputEvent::Type::keyPress, keyH));
    EXPECT_FALSE(otherReceived(InputEvent::Type::keyRelease, keyH)) << "of a press it never saw";
}

TEST_F(HotKeysDesktopTest, LeaveAloneWhatAnotherProgramHolds) {
    constexpr std::uint16_t numLock = XCB_MOD_MASK_2;
    ClientWindow third(server.display(), {.area = {0, 0, 1, 1}});
    for (const std::uint16_t locks : {std::uint16_t{0}, numLock}) {
        auto holder = std::make_unique<ClientWindow>(server.display(),
                                                     ClientWindowOptions{.area = {0, 0, 1, 1}});
        ASSERT_TRUE(holder->grabKey(keyH, controlAlt | locks));
        EXPECT_EQ(manager->register_(preferences), "registration");
        EXPECT_THAT(pressed('h'), IsEmpty());
        EXPECT_THAT(pressed('l'), ElementsAre(CursorMode::laser));
        // What was granted for the other locks has been given back.
        EXPECT_TRUE(third.grabKey(keyH, controlAlt | XCB_MOD_MASK_LOCK));
        xcb_ungrab_key(third.connection().get(), XCB_GRAB_ANY, third.connection().root(),
                       XCB_MOD_MASK_ANY);
        third.connection().sync();
        holder.reset();
        EXPECT_TRUE(runUntil([this] { return manager->register_(preferences) == std::nullopt; }));
        EXPECT_THAT(pressed('h'), ElementsAre(CursorMode::highlight));
        preferences.highlightShortcut.reset();
        EXPECT_EQ(manager->register_(preferences), std::nullopt);
        settle();
        preferences = {};
    }
}

// A second kind of grab, in which core grabs do not show.
TEST_F(HotKeysDesktopTest, LeaveAloneWhatAnotherProgramHoldsByXInput) {
    auto* holder = other.connection().get();
    const std::uint32_t state = controlAlt;
    const std::uint32_t events = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
    std::free(xcb_input_xi_query_version_reply(holder, xcb_input_xi_query_version(holder, 2, 2),
                                               nullptr));
    const auto grab = ownReply(xcb_input_xi_passive_grab_device_reply(
        holder,
        xcb_input_xi_passive_grab_device(holder, XCB_CURRENT_TIME, other.connection().root(),
                                         XCB_NONE, keyH, 3, 1, 1, XCB_INPUT_GRAB_TYPE_KEYCODE,
                                         XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC,
                                         XCB_INPUT_GRAB_OWNER_NO_OWNER, &events, &state),
        nullptr));
    ASSERT_TRUE(grab && grab->num_modifiers == 0);
    EXPECT_EQ(manager->register_(preferences), "registration");
    EXPECT_THAT(pressed('l'), ElementsAre(CursorMode::laser));
}

TEST_F(HotKeysDesktopTest, StayWithTheirKeysUnderAnotherLayout) {
    ASSERT_EQ(manager->register_(preferences), std::nullopt);
    runProgram({"setxkbmap", "us", "-variant", "dvorak"});
    EXPECT_THAT(pressed('d'), ElementsAre(CursorMode::highlight));
    EXPECT_THAT(pressed('h'), IsEmpty());
}

TEST_F(HotKeysDesktopTest, FollowAltAndSuperToOtherModifiers) {
    preferences.laserShortcut = {4, modifier::control | modifier::command, "⌃⌘H"};
    ASSERT_EQ(manager->register_(preferences), std::nullopt);
    const auto bothWork = [this] {
        return pressed('h') == std::vector{CursorMode::highlight} &&
               pressed('h', XK_Super_L) == std::vector{CursorMode::laser};
    };
    EXPECT_TRUE(bothWork());
    runProgram({"xmodmap", "-e", "clear mod1", "-e", "clear mod4", "-e", "add mod1 = Super_L", "-e",
                "add mod4 = Alt_L"});
    EXPECT_TRUE(bothWork());
    runProgram({"xmodmap", "-e", "clear mod4", "-e", "clear mod3", "-e", "add mod3 = Alt_L"});
    EXPECT_TRUE(bothWork());
    EXPECT_FALSE(otherReceived(InputEvent::Type::keyPress, keyH));
}

TEST_F(HotKeysDesktopTest, WorkWhereALockSharesTheBitOfAModifier) {
    runProgram({"xmodmap", "-e", "add mod4 = Scroll_Lock"});
    preferences.highlightShortcut = {4, modifier::control | modifier::command, "⌃⌘H"};
    ASSERT_EQ(manager->register_(preferences), std::nullopt);
    EXPECT_THAT(pressed('h', XK_Super_L), ElementsAre(CursorMode::highlight));
}

TEST_F(HotKeysDesktopTest, ThatANewMappingLosesAreReportedAndTriedAgain) {
    std::vector<bool> works;
    manager->onLoss = [&] { works.push_back(manager->register_(preferences) == std::nullopt); };
    ASSERT_EQ(manager->register_(preferences), std::nullopt);
    ASSERT_TRUE(other.grabKey(keyH, XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_3));
    runProgram({"xmodmap", "-e", "clear mod1", "-e", "clear mod3", "-e", "add mod3 = Alt_L"});
    ASSERT_TRUE(runUntil([&] { return !works.empty(); }));
    EXPECT_FALSE(works.front());
    EXPECT_THAT(pressed('l'), ElementsAre(CursorMode::laser));
    xcb_ungrab_key(other.connection().get(), XCB_GRAB_ANY, other.connection().root(),
                   XCB_MOD_MASK_ANY);
    other.connection().sync();
    EXPECT_TRUE(runUntil([&] { return works.back(); }));
    EXPECT_THAT(pressed('h'), ElementsAre(CursorMode::highlight));
}

TEST_F(HotKeysDesktopTest, AreRegisteredAgainWithoutAskingTheServer) {
    ASSERT_EQ(manager->register_(preferences), std::nullopt);
    const auto first = xcb_no_operation(connection->xcb());
    for (int change = 0; change < 1000; ++change) {
        ASSERT_EQ(manager->register_(preferences), std::nullopt);
    }
    EXPECT_EQ(xcb_no_operation(connection->xcb()).sequence - first.sequence, 1U);
    EXPECT_THAT(pressed('h'), ElementsAre(CursorMode::highlight));
    EXPECT_THAT(pressed('l'), ElementsAre(CursorMode::laser));
}

TEST_F(HotKeysDesktopTest, AreFreeForOthersOnceTheyAreCleared) {
    ASSERT_EQ(manager->register_(preferences), std::nullopt);
    preferences.highlightShortcut.reset();
    ASSERT_EQ(manager->register_(preferences), std::nullopt);
    EXPECT_TRUE(runUntil([this] { return other.grabKey(keyH, controlAlt); }));
}

TEST_F(HotKeysDesktopTest, AreRefusedWhereThereIsNoSuchKeyOrModifier) {
    EXPECT_EQ(x11->hotKeys.register_(0x37, modifier::control, {}), std::nullopt);
    EXPECT_EQ(x11->hotKeys.register_(70'000, modifier::control, {}), std::nullopt);
    EXPECT_EQ(x11->hotKeys.register_(4, modifier::control | 1, {}), std::nullopt);
    EXPECT_NE(x11->hotKeys.register_(0x5A, modifier::shift, {}), std::nullopt);
    EXPECT_EQ(x11->hotKeys.register_(0x5A, modifier::shift, {}), std::nullopt);
}

} // namespace
} // namespace vantrel::desktop
