#include "input/click_monitor.h"
#include "platform/x11/handles.h"
#include "support/click.h"
#include "support/input_fixture.h"

#include <QEventLoop>
#include <QTimer>

#include <array>
#include <optional>

#include <xcb/xinput.h>

namespace vantrel::desktop {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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
        auto* xcb = other.connection().get();
        const auto reply = ownReply(xcb_set_pointer_mapping_reply(
            xcb, xcb_set_pointer_mapping(xcb, swapped.size(), swapped.data()), nullptr));
        ASSERT_EQ(reply->status, XCB_MAPPING_STATUS_SUCCESS);
    }
    // Of the device whose buttons the tests press.
    void swapButtonsOfDevice() {
        constexpr std::uint8_t syntheticPointer = 4;
        auto* xcb = other.connection().get();
        const auto reply = ownReply(xcb_input_set_device_button_mapping_reply(
            xcb,
            xcb_input_set_device_button_mapping(xcb, syntheticPointer, swapped.size(),
                                                swapped.data()),
            nullptr));
        ASSERT_TRUE(reply && reply->status == XCB_MAPPING_STATUS_SUCCESS);
    }

    static constexpr std::array<std::uint8_t, 10> swapped{3, 2, 1, 4, 5, 6, 7, 8, 9, 10};
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
    clicks.clear();
    for (int i = 0; i < 2; ++i) {
        input.click();
    }
    settle();
    EXPECT_THAT(clicks, ElementsAre(left, left)) << "a double click";
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
    clicks.clear();
    input.click(Button::left);
    input.moveTo({300, 300});
    settle();
    EXPECT_THAT(clicks, ElementsAre(Click{MouseButton::left, {500, 500}})) << "where it was made";
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
    input.click();
    settle();
    EXPECT_EQ(later, 0);
    input.click();
    settle();
    EXPECT_EQ(later, 1);
    x11->eventMonitors.remove(*token);
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

} // namespace
} // namespace vantrel::desktop
