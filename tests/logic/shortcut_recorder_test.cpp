#include "support/views_fixture.h"
#include "ui/components/shortcut_recorder.h"
#include "ui/components/stack.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QLineEdit>
#include <QShortcut>

namespace vantrel {
namespace {

// Numbers of the desktop for the keys that are pressed here.
constexpr std::uint32_t j = 1, q = 2, seven = 3, escape = 4, backspace = 5, tab = 6, space = 7,
                        enter = 8, f3 = 9, forwardDelete = 10, shiftKey = 11, odd = 12;
constexpr auto controlOption = keyflag::control | keyflag::option;

class ShortcutRecorderTest : public ViewsTest {
protected:
    void SetUp() override {
        desktop.keyboard.keys = {
            {j, {38, "j"}},         {q, {12, "q"}},           {seven, {26, "&"}},
            {escape, {53, "\x1B"}}, {backspace, {51, "\b"}},  {tab, {48, "\t"}},
            {space, {49, " "}},     {f3, {99, std::nullopt}}, {forwardDelete, {117, std::nullopt}}};
        desktop.keyboard.modifiers = {shiftKey};
        open();
    }

    void open() {
        recorder = new ShortcutRecorder(view, view.binding(&AppPreferences::highlightShortcut),
                                        Text{"Record shortcut", "录入快捷键"});
        recorder->setAccessibleName(QStringLiteral("Toggle highlight"));
        other = new QLineEdit;
        show(column(0, {new QLineEdit, recorder, other}));
        other->setFocus();
    }

    // Returns whether the key went no further.
    bool press(std::uint32_t key, std::uint32_t flags, Qt::Key qtKey = Qt::Key_J,
               Qt::KeyboardModifiers modifiers = {}, bool repeated = false) {
        QKeyEvent event(QEvent::KeyPress, qtKey, modifiers, key, 0, flags, {}, repeated);
        QCoreApplication::sendEvent(recorder, &event);
        update();
        return event.isAccepted();
    }
    void click() { QTest::mouseClick(recorder, Qt::LeftButton); }
    std::string title() { return recorder->text().toStdString(); }
    const auto& shortcut() { return preferences().highlightShortcut; }
    void expectIdle(const std::string& idleTitle) {
        EXPECT_FALSE(recorder->recording());
        EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
        EXPECT_FALSE(desktop.hotKeys.keysAreLeft);
        EXPECT_EQ(title(), idleTitle);
    }
    void expectRecording() {
        EXPECT_TRUE(recorder->recording());
        EXPECT_EQ(QWidget::keyboardGrabber(), recorder);
        EXPECT_TRUE(desktop.hotKeys.keysAreLeft);
        EXPECT_EQ(title(), "Record shortcut");
    }

    ShortcutRecorder* recorder = nullptr;
    QLineEdit* other = nullptr;
};

TEST_F(ShortcutRecorderTest, TakesTheNextCombinationAndWritesItOnce) {
    struct Case {
        std::uint32_t key, flags;
        Shortcut recorded;
        std::string title;
    };
    const Case cases[] = {
        {j, controlOption, {38, 6144, "⌃⌥J"}, "⌃⌥J"},
        {q, keyflag::command, {12, 256, "⌘Q"}, "⌘Q"},
        {f3, keyflag::option | keyflag::shift, {99, 2560, "⌥⇧99"}, "⌥⇧99"},
        // Two ampersands show as one.
        {seven, keyflag::control | keyflag::shift, {26, 4608, "⌃⇧&"}, "⌃⇧&&"},
    };
    for (const auto& [key, flags, recorded, shown] : cases) {
        click();
        expectRecording();
        EXPECT_EQ(assignments([&, key = key, flags = flags] { press(key, flags); }), 1);
        EXPECT_EQ(shortcut(), recorded);
        expectIdle(shown);
        EXPECT_FALSE(recorder->hasFocus());
    }
    EXPECT_EQ(desktop.alertSound.beeps, 0);
}

TEST_F(ShortcutRecorderTest, TheDeleteKeyAloneClearsAndIsAKeyLikeOthersWithModifiers) {
    click();
    press(forwardDelete, keyflag::control);
    EXPECT_EQ(shortcut(), (Shortcut{117, modifier::control, "⌃117"}));
    click();
    press(forwardDelete, 0);
    EXPECT_EQ(shortcut(), std::nullopt);
}

TEST_F(ShortcutRecorderTest, EscapeCancelsAndBackspaceClearsWhateverIsHeld) {
    for (const auto flags : {std::uint32_t{0}, controlOption, std::uint32_t{keyflag::command}}) {
        click();
        EXPECT_EQ(assignments([&] { press(escape, flags); }), 0);
        expectIdle("⌃⌥H");
        EXPECT_FALSE(recorder->hasFocus());

        click();
        EXPECT_EQ(assignments([&] { press(backspace, flags); }), 1);
        EXPECT_EQ(shortcut(), std::nullopt);
        expectIdle("Record shortcut");
        change([](AppPreferences& preferences) {
            preferences.highlightShortcut = Shortcut::defaultHighlight();
        });
    }
    EXPECT_EQ(desktop.alertSound.beeps, 0);
}

TEST_F(ShortcutRecorderTest, RefusesOtherKeysAndGoesOn) {
    struct Case {
        std::uint32_t key, flags;
        int beeps;
    };
    const Case cases[] = {
        {j, 0, 1},        {j, keyflag::shift, 1},       {tab, 0, 1},
        {space, 0, 1},    {odd, controlOption, 1},      {odd, 0, 1},
        {shiftKey, 0, 0}, {shiftKey, controlOption, 0},
    };
    click();
    const auto picture = [this] { return recorder->grab().toImage(); };
    const auto usual = picture();
    for (const auto& [key, flags, beeps] : cases) {
        desktop.alertSound.beeps = 0;
        EXPECT_TRUE(press(key, flags, Qt::Key_Tab));
        EXPECT_EQ(desktop.alertSound.beeps, beeps) << key;
        EXPECT_EQ(picture() != usual, beeps > 0) << key;
        EXPECT_TRUE(QTest::qWaitFor([&] { return picture() == usual; }));
        expectRecording();
    }
    press(j, controlOption, Qt::Key_J, {}, true);
    expectRecording();
    EXPECT_EQ(shortcut(), Shortcut::defaultHighlight());
    press(j, controlOption);
    EXPECT_EQ(shortcut(), (Shortcut{38, 6144, "⌃⌥J"}));
}

TEST_F(ShortcutRecorderTest, KeepsThePromptUpWhileTheShortcutOrTheLanguageChanges) {
    click();
    change([](AppPreferences& preferences) {
        preferences.highlightShortcut = Shortcut{38, 6144, "⌃⌥J"};
    });
    expectRecording();
    change([](AppPreferences& preferences) { preferences.language = AppLanguage::chinese; });
    EXPECT_EQ(title(), "录入快捷键");
    press(escape, 0);
    expectIdle("⌃⌥J");
    change([](AppPreferences& preferences) { preferences.highlightShortcut = std::nullopt; });
    expectIdle("录入快捷键");
}

TEST_F(ShortcutRecorderTest, LeavesKeysToTheWindowUnlessItRecords) {
    int shortcuts = 0;
    const QShortcut equivalent(QKeySequence(Qt::CTRL | Qt::Key_J), window.get(),
                               [&] { ++shortcuts; });
    recorder->setFocus();
    QTest::keyClick(window->windowHandle(), Qt::Key_J, Qt::ControlModifier);
    EXPECT_EQ(shortcuts, 1);
    EXPECT_FALSE(press(j, keyflag::control, Qt::Key_K, Qt::ControlModifier));
    EXPECT_TRUE(press(space, 0, Qt::Key_Space));
    QTest::keyClick(recorder, Qt::Key_Space);
    EXPECT_TRUE(press(j, 0));
    expectIdle("⌃⌥H");
    EXPECT_TRUE(recorder->hasFocus());
    EXPECT_EQ(desktop.alertSound.beeps, 0);

    click();
    QTest::keyClick(window->windowHandle(), Qt::Key_J, Qt::ControlModifier);
    EXPECT_EQ(shortcuts, 1);
    expectRecording();
}

TEST_F(ShortcutRecorderTest, IsWorkedByKeyboardAlone) {
    QTest::keyClick(other, Qt::Key_Backtab);
    ASSERT_TRUE(recorder->hasFocus());
    EXPECT_TRUE(press(enter, 0, Qt::Key_Return, {}, true));
    expectIdle("⌃⌥H");
    EXPECT_TRUE(press(enter, 0, Qt::Key_Return));
    expectRecording();
    press(j, controlOption);
    ASSERT_EQ(window->focusWidget(), nullptr);
    QTest::keyClick(window.get(), Qt::Key_Tab);
    EXPECT_TRUE(other->hasFocus());
    EXPECT_EQ(shortcut(), (Shortcut{38, 6144, "⌃⌥J"}));
}

TEST_F(ShortcutRecorderTest, TellsScreenReadersWhatItShows) {
    auto* accessible = QAccessible::queryAccessibleInterface(recorder);
    EXPECT_EQ(accessible->role(), QAccessible::PushButton);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Toggle highlight"));
    EXPECT_EQ(accessible->text(QAccessible::Description), QStringLiteral("⌃⌥H"));
    const auto idle = recorder->grab().toImage();
    accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(QTest::qWaitFor([this] { return recorder->recording(); }));
    expectRecording();
    EXPECT_EQ(accessible->text(QAccessible::Description), QStringLiteral("Record shortcut"));
    // Those who see it are shown a line around it.
    const auto accent = recorder->palette().color(QPalette::Active, QPalette::Highlight);
    const auto recording = recorder->grab().toImage();
    EXPECT_EQ(recording.pixelColor(recording.width() / 2, 0), accent);
    EXPECT_NE(idle.pixelColor(idle.width() / 2, 0), accent);
}

} // namespace
} // namespace vantrel
