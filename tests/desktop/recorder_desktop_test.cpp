#include "input/hotkey_manager.h"
#include "input/shortcut_button.h"
#include "platform/x11/desktop.h"
#include "testdesk/client_window.h"
#include "testdesk/desktop_programs.h"
#include "testdesk/headless/session.h"
#include "testdesk/private_server.h"
#include "testdesk/synthetic_input.h"
#include "testdesk/wait.h"
#include "testdesk/x_traffic.h"

#include <QApplication>
#include <QLineEdit>
#include <QVBoxLayout>
#include <QtTest/QTest>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <X11/keysym.h>

namespace vantrel::desktop {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint8_t keyJ = 44;
constexpr std::uint16_t controlAlt = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
const Shortcut controlOptionJ{38, 6144, "⌃⌥J"};

// A window manager, the toolkit on its server, and a window of the toolkit with the button in it.
class RecorderDesktopTest : public testing::Test {
protected:
    void SetUp() override {
        x11::ConnectionError error;
        connection = x11::Connection::open(server.display(), error);
        ASSERT_TRUE(connection) << error.english;
        x11 = std::make_unique<x11::X11Desktop>(*connection);
        open();
    }
    void TearDown() override {
        window.reset();
        x11.reset();
        connection.reset();
    }

    void open() {
        window = std::make_unique<QWidget>();
        button = new ShortcutButton(x11->keyboard, x11->hotKeys, alert);
        button->onShortcut = [this](const auto& shortcut) { recorded.push_back(shortcut); };
        edit = new QLineEdit;
        auto* layout = new QVBoxLayout(window.get());
        layout->addWidget(button);
        layout->addWidget(edit);
        window->setGeometry(100, 100, 300, 200);
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    static bool runUntil(const std::function<bool()>& condition) {
        return QTest::qWaitFor(condition, 10'000);
    }
    void click(const QWidget* widget) {
        const auto place = widget->mapToGlobal(widget->rect().center());
        input.moveTo({place.x(), place.y()});
        input.click();
    }
    void startRecording() {
        click(button);
        ASSERT_TRUE(runUntil([this] { return button->recording() && button->hasFocus(); }));
    }
    // What a chord is recorded as; nothing when it is not.
    std::optional<Shortcut> recordedAs(const std::vector<std::uint32_t>& chord) {
        recorded.clear();
        startRecording();
        input.typeChord(chord);
        EXPECT_TRUE(runUntil([this] { return !recorded.empty(); })) << chord.back();
        return recorded.empty() ? std::nullopt : recorded.front();
    }
    void runProgram(const std::vector<std::string>& command) {
        ChildProcess process({.arguments = command, .environment = server.environment()});
        ASSERT_EQ(process.wait(std::chrono::seconds(10)), ExitStatus{.code = 0});
        settle();
    }
    // Until both connections have heard what the server has to say by now.
    void settle() {
        auto* toolkit = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
        for (auto* xcb : {connection->xcb(), toolkit}) {
            std::free(xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
        }
        connection->dispatch();
        QCoreApplication::processEvents();
    }
    bool otherReceived(std::uint8_t keycode) {
        return std::ranges::any_of(other.events(), [keycode](const InputEvent& event) {
            return event.type == InputEvent::Type::keyPress && event.detail == keycode;
        });
    }
    bool keyboardIsFree() {
        const bool granted = other.grabKeyboard();
        other.releaseKeyboard();
        return granted;
    }

    PrivateServer server = PrivateServer::virtualScreen({1000, 600});
    ChildProcess windowManager = startWindowManager(server);
    SyntheticInput input{server.display()};
    ClientWindow other{server.display(), {.area = {600, 0, 200, 200}}};
    std::unique_ptr<x11::Connection> connection;
    std::unique_ptr<x11::X11Desktop> x11;
    headless::AlertSound alert;
    std::unique_ptr<QWidget> window;
    ShortcutButton* button = nullptr;
    QLineEdit* edit = nullptr;
    std::vector<std::optional<Shortcut>> recorded;

private:
    // Says where the toolkit's connection goes, before there is a toolkit.
    struct Surroundings {
        explicit Surroundings(const PrivateServer& server) {
            for (const auto& [name, value] : server.environment()) {
                qputenv(name.c_str(), QByteArray::fromStdString(value));
            }
        }
    };

    Surroundings surroundings_{server};
    int argumentCount_ = 1;
    char name_[5] = "test";
    char* arguments_[2] = {name_, nullptr};
    QApplication application_{argumentCount_, arguments_};
};

TEST_F(RecorderDesktopTest, RecordsWhatIsPressed) {
    struct Case {
        std::vector<std::uint32_t> chord;
        Shortcut shortcut;
    };
    const Case cases[] = {
        {{XK_Control_L, XK_Alt_L, 'j'}, controlOptionJ},
        {{XK_Control_R, XK_Alt_R, 'j'}, controlOptionJ},
        {{XK_Super_L, 'q'}, {12, 256, "⌘Q"}},
        {{XK_Control_L, XK_Shift_R, '7'}, {26, 4608, "⌃⇧&"}},
        {{XK_Alt_L, XK_space}, {49, 2048, "⌥Space"}},
        {{XK_Control_L, XK_Up}, {126, 4096, "⌃Up"}},
        {{XK_Control_L, XK_Page_Down}, {121, 4096, "⌃Page_Down"}},
        {{XK_Control_L, XK_Shift_L, XK_Tab}, {48, 4608, "⌃⇧Tab"}},
        {{XK_Control_L, XK_KP_Home}, {89, 4096, "⌃7"}},
    };
    for (const auto& [chord, shortcut] : cases) {
        EXPECT_EQ(recordedAs(chord), shortcut);
    }
    input.typeChord({XK_Caps_Lock});
    input.typeChord({XK_Num_Lock});
    EXPECT_EQ(recordedAs({XK_Control_L, XK_Alt_L, 'j'}), controlOptionJ);
    input.typeChord({XK_Caps_Lock});
    EXPECT_EQ(alert.beeps, 0);
}

TEST_F(RecorderDesktopTest, HasNoShortcutWithAltGr) {
    runProgram({"setxkbmap", "de"});
    startRecording();
    int beeps = 0;
    for (const auto& held : std::vector<std::vector<std::uint32_t>>{
             {XK_ISO_Level3_Shift}, {XK_Control_L, XK_ISO_Level3_Shift}}) {
        auto chord = held;
        chord.push_back('j');
        input.typeChord(chord);
        EXPECT_TRUE(runUntil([&] { return alert.beeps == beeps + 1; }));
        ++beeps;
    }
    EXPECT_TRUE(button->recording());
    input.typeChord({XK_ISO_Level3_Shift, XK_Escape});
    EXPECT_TRUE(runUntil([this] { return !button->recording(); }));
    EXPECT_THAT(recorded, IsEmpty());
    EXPECT_EQ(alert.beeps, beeps);
}

TEST_F(RecorderDesktopTest, GoesByThePlaceOfTheKeyAndShowsWhatTheLayoutHasThere) {
    struct Case {
        std::string layout, variant;
        std::vector<std::uint32_t> chord;
        Shortcut shortcut;
    };
    const Case cases[] = {
        {"us", "dvorak", {XK_Control_L, XK_Alt_L, 'h'}, {38, 6144, "⌃⌥H"}},
        {"fr", "", {XK_Control_L, 'q'}, {0, 4096, "⌃Q"}},
        {"de", "", {XK_Control_L, XK_dead_circumflex}, {50, 4096, "⌃^"}},
        {"us", "intl", {XK_Alt_L, XK_dead_acute}, {39, 2048, "⌥´"}},
        {"ru", "", {XK_Control_L, XK_Alt_L, XK_Cyrillic_o}, {38, 6144, "⌃⌥О"}},
    };
    for (const auto& [layout, variant, chord, shortcut] : cases) {
        runProgram({"setxkbmap", layout, variant});
        EXPECT_EQ(recordedAs(chord), shortcut);
    }
    EXPECT_EQ(alert.beeps, 0);
}

TEST_F(RecorderDesktopTest, FollowsAltSuperAndMetaToOtherKeys) {
    runProgram({"setxkbmap", "us", "-option", "altwin:meta_win"});
    EXPECT_EQ(recordedAs({XK_Meta_L, 'q'}), (Shortcut{12, 256, "⌘Q"}));
    runProgram({"setxkbmap", "us", "-option", "", "-option", "altwin:swap_alt_win"});
    EXPECT_EQ(recordedAs({XK_Super_L, 'q'}), (Shortcut{12, 256, "⌘Q"}));
    EXPECT_EQ(recordedAs({XK_Alt_L, 'q'}), (Shortcut{12, 2048, "⌥Q"}));
    runProgram({"xmodmap", "-e", "clear mod1", "-e", "clear mod3", "-e", "add mod3 = Alt_L Alt_R"});
    EXPECT_EQ(recordedAs({XK_Alt_L, 'q'}), (Shortcut{12, 2048, "⌥Q"}));
}

TEST_F(RecorderDesktopTest, RecordsOurOwnShortcutWithoutCarryingItOut) {
    HotkeyManager manager(x11->hotKeys);
    std::vector<CursorMode> modes;
    manager.onMode = [&modes](CursorMode mode) { modes.push_back(mode); };
    ASSERT_EQ(manager.register_({}), std::nullopt);
    EXPECT_EQ(recordedAs({XK_Control_L, XK_Alt_L, 'h'}), Shortcut::defaultHighlight());
    settle();
    EXPECT_THAT(modes, IsEmpty());
    input.typeChord({XK_Control_L, XK_Alt_L, 'h'});
    EXPECT_TRUE(runUntil([&] { return !modes.empty(); }));
    EXPECT_THAT(modes, ElementsAre(CursorMode::highlight));
}

TEST_F(RecorderDesktopTest, RecordsWhatIsAnotherProgramsAndLeavesItToIt) {
    ASSERT_TRUE(other.grabKey(keyJ, controlAlt));
    EXPECT_EQ(recordedAs({XK_Control_L, XK_Alt_L, 'j'}), controlOptionJ);
    EXPECT_FALSE(otherReceived(keyJ));
}

TEST_F(RecorderDesktopTest, GivesTheKeyboardBackHoweverRecordingEnds) {
    const std::function<void()> ways[] = {
        // Only these two have a result.
        [this] { input.typeChord({XK_BackSpace}); },
        [this] {
            input.typeChord({XK_Super_L, 'j'});
        },
        [this] { input.typeChord({XK_Escape}); },
        [this] { click(edit); },
        [this] { button->setEnabled(false); },
        [this] { window->hide(); },
        [this] { window->close(); },
        [this] { window->showMinimized(); },
        [this] { window.reset(); },
        [this] {
            xcb_set_input_focus(other.connection().get(), XCB_INPUT_FOCUS_NONE, other.id(),
                                XCB_CURRENT_TIME);
            other.connection().sync();
        },
    };
    for (std::size_t i = 0; i < std::size(ways); ++i) {
        SCOPED_TRACE(i);
        startRecording();
        EXPECT_FALSE(keyboardIsFree());
        ways[i]();
        EXPECT_TRUE(runUntil([this] { return keyboardIsFree(); }));
        EXPECT_TRUE(window == nullptr || !button->recording());
        EXPECT_EQ(std::exchange(recorded, {}).size(), i < 2 ? 1U : 0U);
        open();
    }
}

TEST(AlertSoundDesktopTest, RingsTheBellAtOnce) {
    const auto server = PrivateServer::virtualScreen();
    const XTraffic traffic(server.display());
    x11::ConnectionError error;
    const auto connection = x11::Connection::open(traffic.display(), error);
    ASSERT_TRUE(connection) << error.english;
    x11::X11AlertSound(*connection).beep();
    EXPECT_TRUE(waitFor([&] { return traffic.counts().count({.major = XCB_BELL}) == 1; }));
}

} // namespace
} // namespace vantrel::desktop
