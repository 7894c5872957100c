#pragma once

#include "platform/input.h"
#include "platform/native_windows.h"
#include "platform/shell.h"
#include "preferences/shortcut.h"

#include <QBasicTimer>
#include <QPushButton>

#include <functional>
#include <optional>

namespace vantrel {

// Gives a widget every key that is pressed, other programs' shortcuts included, until this is
// destroyed. Where the desktop refuses that, the keys of the widget's window. Both must outlive it.
class KeyboardGrab {
public:
    KeyboardGrab(QWidget& widget, HotKeys& hotKeys) : widget_(widget), hotKeys_(hotKeys) {
        if (!hasNativeWindows()) {
            widget_.grabKeyboard();
        }
        hotKeys_.leaveKeys(true);
    }
    ~KeyboardGrab() {
        hotKeys_.leaveKeys(false);
        if (!hasNativeWindows()) {
            widget_.releaseKeyboard();
        }
    }
    KeyboardGrab(const KeyboardGrab&) = delete;
    KeyboardGrab& operator=(const KeyboardGrab&) = delete;

private:
    QWidget& widget_;
    HotKeys& hotKeys_;
};

// Shows a shortcut. Once it is clicked, the next combination of keys with Control, Option or
// Command is the new one; Escape cancels, and Backspace or Delete clears it. Recording also
// ends, with nothing changed, when the button loses the focus. A key that is refused rings the
// alert and lights the button up for a moment.
//
// Once Escape or a shortcut has ended the recording, nothing has the focus; Tab goes on from here.
class ShortcutButton : public QPushButton {
public:
    // All must outlive the button.
    ShortcutButton(const Keyboard& keyboard, HotKeys& hotKeys, AlertSound& alertSound);

    // Receives the recorded shortcut, or nothing when the user clears it.
    std::function<void(const std::optional<Shortcut>&)> onShortcut;
    QString prompt = QStringLiteral("Record shortcut"); // the title while recording
    QString savedTitle;                                 // the title otherwise

    void record();
    [[nodiscard]] bool recording() const { return recording_; }
    // Shows a changed prompt or savedTitle.
    void updateTitle();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void handleKey(const QKeyEvent& event);
    void handlePress(const KeyPress& press);
    void report(const std::optional<Shortcut>& shortcut) const;
    void grabKeyboardIfFocused();
    void refuse();
    void stop();
    void cancel();
    void giveFocusUp();

    const Keyboard& keyboard_;
    HotKeys& hotKeys_;
    AlertSound& alertSound_;
    bool recording_ = false;
    std::optional<KeyboardGrab> grab_; // only while recording
    QBasicTimer refusal_;              // runs while a refusal is shown
};

} // namespace vantrel
