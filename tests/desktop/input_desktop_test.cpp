#include "input/click_monitor.h"
#include "input/hotkey_manager.h"
#include "platform/x11/desktop.h"
#include "platform/x11/handles.h"
#include "platform/x11/key_table.h"
#include "support/click.h"
#include "testdesk/client_window.h"
#include "testdesk/core_application.h"
#include "testdesk/private_server.h"
#include "testdesk/synthetic_input.h"

#include <QEventLoop>
#include <QTimer>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <set>

#include <X11/keysym.h>
#include <xcb/xinput.h>

namespace vantrel::desktop {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint8_t keyA = 38;
constexpr std::uint8_t keyH = 43;
constexpr std::uint16_t controlAlt = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;

// The input of this process on a private server, and another program whose window has the focus.
class InputDesktopTest : public testing::Test {
protected:
    void SetUp() override {
        xcb_set_input_focus(other.connection().get(), XCB_INPUT_FOCUS_NONE, other.id(),
                            XCB_CURRENT_TIME);
        other.connection().sync();
        x11::ConnectionError error;
        connection = x11::Connection::open(server.display(), error);
        ASSERT_TRUE(connection) << error.english;
        x11 = std::make_unique<x11::X11Desktop>(*connection);
    }
    void TearDown() override {
        x11.reset();
        connection.reset();
    }

    // Lets the event loop run until the condition holds; whether it did in time.
    static bool runUntil(const std::function<bool()>& condition) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > end) {
                return false;
            }
            QCoreApplication::processEvents(QEventLoop::AllEvents, 2);
        }
        return true;
    }
    // Until all that the server has to say by now was heard and acted on.
    void settle() const {
        QCoreApplication::processEvents();
        auto* xcb = connection->xcb();
        std::free(xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
        connection->dispatch();
    }
    void runProgram(const std::vector<std::string>& command) const {
        ChildProcess process({.arguments = command, .environment = server.environment()});
        ASSERT_EQ(process.wait(std::chrono::seconds(10)), ExitStatus{.code = 0});
        settle();
    }
    [[nodiscard]] bool otherReceived(InputEvent::Type type, std::uint8_t detail) {
        return std::ranges::any_of(other.events(), [&](const InputEvent& event) {
            return event.type == type && event.detail == detail;
        });
    }

    PrivateServer server = PrivateServer::virtualScreen({1000, 600});
    SyntheticInput input{server.display()};
    ClientWindow other{server.display(), {.area = {0, 0, 1000, 600}}};
    std::unique_ptr<x11::Connection> connection;
    std::unique_ptr<x11::X11Desktop> x11;

private:
    CoreApplication application_;
};

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

// Has the server answer, each time, before it lets the connection go on.
class Echo final : x11::EventHandler {
public:
    explicit Echo(x11::Connection& connection)
        : connection_(connection),
          window_(connection.xcb()),
          events_(connection.addHandler(*this)) {
        xcb_create_window(connection.xcb(), XCB_COPY_FROM_PARENT, window_.id(), connection.root(),
                          0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0,
                          nullptr);
        shout();
    }

    [[nodiscard]] int heard() const { return heard_; }
    std::function<void()> onEcho;

private:
    void handleEvent(const xcb_generic_event_t& event) override {
        heard_ += x11::eventNumber(event) == XCB_CLIENT_MESSAGE ? 1 : 0;
    }
    void eventsDrained() override {
        if (heard_ < 2000) {
            shout();
        }
        onEcho();
    }
    void shout() {
        auto* xcb = connection_.xcb();
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window_.id();
        xcb_send_event(xcb, 0, window_.id(), 0, reinterpret_cast<const char*>(&message));
        std::free(xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
    }

    x11::Connection& connection_;
    x11::WindowHandle window_;
    int heard_ = 0;
    Subscription events_;
};

TEST_F(InputDesktopTest, AServerThatNeverFallsSilentIsHeardAndHoldsNothingUp) {
    Echo echo(*connection);
    QEventLoop loop;
    QTimer timer;
    int turns = 0;
    QObject::connect(&timer, &QTimer::timeout, &loop, [&] { ++turns; });
    timer.start(0);
    QTimer::singleShot(std::chrono::seconds(5), &loop, [&] { loop.exit(1); });
    echo.onEcho = [&] {
        if (echo.heard() == 1000) {
            timer.stop();
        } else if (echo.heard() == 2000) {
            loop.quit();
        }
    };
    EXPECT_EQ(loop.exec(), 0) << echo.heard();
    EXPECT_GT(turns, 10);
}

TEST(KeyTable, HasAPlaceOfItsOwnForEveryKeyOfAShortcut) {
    // Modifier keys, and codes that no key has.
    const std::set<std::uint32_t> none{0x34, 0x36, 0x37, 0x38, 0x39, 0x3A, 0x3B, 0x3C, 0x3D,
                                       0x3E, 0x3F, 0x42, 0x44, 0x46, 0x4D, 0x6C, 0x70, 0x7F};
    for (std::uint32_t code = 0; code <= 0x7F; ++code) {
        const auto keycode = x11::keycodeOf(code);
        ASSERT_EQ(keycode.has_value(), !none.contains(code)) << code;
        EXPECT_TRUE(!keycode || x11::virtualKeyCodeOf(*keycode) == code) << code;
    }
    EXPECT_EQ(x11::keycodeOf(53), 9);                   // Escape
    EXPECT_EQ(x11::keycodeOf(51), 22);                  // Backspace
    EXPECT_EQ(x11::virtualKeyCodeOf(50), std::nullopt); // left Shift
    EXPECT_EQ(x11::virtualKeyCodeOf(0), std::nullopt);
}

class ClicksDesktopTest : public InputDesktopTest {
protected:
    void SetUp() override {
        InputDesktopTest::SetUp();
        monitor.emplace(ClickMonitor::operationsOf(x11->eventMonitors));
        monitor->onClick = [this](MouseButton button, GlobalPoint point) {
            clicks.push_back({button, point});
        };
        ASSERT_TRUE(monitor->start());
        input.moveTo({300, 100});
        settle();
    }
    void TearDown() override {
        monitor.reset();
        InputDesktopTest::TearDown();
    }

    std::vector<Click> clickedWith(Button button) {
        clicks.clear();
        input.click(button);
        settle();
        return clicks;
    }
    // Left and right change places.
    void swapButtonsOfPointer() {
        constexpr std::array<std::uint8_t, 10> swapped{3, 2, 1, 4, 5, 6, 7, 8, 9, 10};
        auto* xcb = other.connection().get();
        const auto reply = ownReply(xcb_set_pointer_mapping_reply(
            xcb, xcb_set_pointer_mapping(xcb, swapped.size(), swapped.data()), nullptr));
        ASSERT_EQ(reply->status, XCB_MAPPING_STATUS_SUCCESS);
    }
    // Of the device whose buttons the tests press.
    void swapButtonsOfDevice() {
        constexpr std::array<std::uint8_t, 10> swapped{3, 2, 1, 4, 5, 6, 7, 8, 9, 10};
        constexpr std::uint8_t syntheticPointer = 4;
        auto* xcb = other.connection().get();
        const auto reply = ownReply(xcb_input_set_device_button_mapping_reply(
            xcb,
            xcb_input_set_device_button_mapping(xcb, syntheticPointer, swapped.size(),
                                                swapped.data()),
            nullptr));
        ASSERT_TRUE(reply && reply->status == XCB_MAPPING_STATUS_SUCCESS);
    }

    static constexpr Click left{MouseButton::left, {300, 500}};
    static constexpr Click right{MouseButton::right, {300, 500}};

    std::optional<ClickMonitor> monitor;
    std::vector<Click> clicks;
};

TEST_F(ClicksDesktopTest, AreReportedOnceAndOnlyForLeftAndRight) {
    EXPECT_THAT(clickedWith(Button::left), ElementsAre(left));
    EXPECT_THAT(clickedWith(Button::right), ElementsAre(right));
    EXPECT_THAT(clickedWith(Button::middle), IsEmpty());
    for (std::uint8_t wheel = 4; wheel <= 9; ++wheel) {
        EXPECT_THAT(clickedWith(static_cast<Button>(wheel)), IsEmpty());
    }
    EXPECT_TRUE(otherReceived(InputEvent::Type::buttonPress, XCB_BUTTON_INDEX_1));
    monitor->stop();
    EXPECT_THAT(clickedWith(Button::left), IsEmpty());
}

TEST_F(ClicksDesktopTest, AreLeftAndRightAsALeftHandedPersonSeesThem) {
    swapButtonsOfPointer();
    EXPECT_THAT(clickedWith(Button::left), ElementsAre(right));
    EXPECT_THAT(clickedWith(Button::right), ElementsAre(left));
    swapButtonsOfDevice();
    EXPECT_THAT(clickedWith(Button::left), ElementsAre(left));
    swapButtonsOfPointer();
    EXPECT_THAT(clickedWith(Button::right), ElementsAre(right));
    // What the other program was told agrees.
    std::vector<std::uint8_t> told;
    for (const auto& event : other.events()) {
        if (event.type == InputEvent::Type::buttonPress) {
            told.push_back(event.detail);
        }
    }
    EXPECT_THAT(told, ElementsAre(3, 1, 1, 3));
}

TEST_F(ClicksDesktopTest, AreSeenWhileAnotherProgramHasGrabbedThePointer) {
    ASSERT_TRUE(other.grabPointer());
    EXPECT_THAT(clickedWith(Button::left), ElementsAre(left));
    EXPECT_THAT(clickedWith(Button::right), ElementsAre(right));
}

TEST_F(ClicksDesktopTest, OfOneBatchComeInTheirOrderBeforeTheMotion) {
    std::vector<EventType> order;
    const auto types = {EventType::leftMouseDown, EventType::rightMouseDown, EventType::mouseMoved};
    EventMask mask = 0;
    for (const auto type : types) {
        mask |= maskOf(type);
    }
    const auto token = x11->eventMonitors.addGlobal(
        mask, [&order](const Event& event) { order.push_back(event.type); });
    settle();
    input.moveTo({400, 100});
    input.click(Button::left);
    input.moveTo({500, 100});
    input.click(Button::right);
    settle();
    EXPECT_THAT(order, testing::ElementsAreArray(types));
    x11->eventMonitors.remove(*token);
}

TEST_F(ClicksDesktopTest, MayRemoveAndAddMonitorsWhileTheyAreReported) {
    int later = 0;
    std::optional<EventMonitors::Token> token;
    monitor->onClick = [&](MouseButton, GlobalPoint) {
        monitor->stop();
        token = x11->eventMonitors.addGlobal(maskOf(EventType::leftMouseDown),
                                             [&later](const Event&) { ++later; });
    };
    input.click();
    settle();
    EXPECT_EQ(later, 0);
    input.click();
    settle();
    EXPECT_EQ(later, 1);
    x11->eventMonitors.remove(*token);
}

} // namespace
} // namespace vantrel::desktop
