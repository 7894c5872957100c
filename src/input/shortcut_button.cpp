#include "input/shortcut_button.h"

#include "input/enter_key.h"

#include <QPainter>

namespace vantrel {

namespace {

constexpr std::uint16_t escapeKey = 53;
constexpr std::uint16_t backspaceKey = 51;
constexpr std::uint16_t forwardDeleteKey = 117;

// With modifiers, the key that has "Delete" on it can be a shortcut.
bool clears(const KeyPress& press) {
    return press.keyCode == backspaceKey ||
           (press.keyCode == forwardDeleteKey && press.modifierFlags == 0);
}

bool isPlain(const QKeyEvent& event) {
    return (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) == 0;
}

} // namespace

ShortcutButton::ShortcutButton(const Keyboard& keyboard, HotKeys& hotKeys, AlertSound& alertSound)
    : keyboard_(keyboard), hotKeys_(hotKeys), alertSound_(alertSound) {
    setAutoDefault(false);
    connect(this, &QAbstractButton::clicked, this, &ShortcutButton::record);
}

void ShortcutButton::record() {
    recording_ = true;
    updateTitle();
    update();
    if (!isActiveWindow()) {
        activateWindow();
    }
    setFocus(Qt::OtherFocusReason);
    grabKeyboardIfFocused();
}

// An ampersand in a title is not a mark that the next letter presses the button.
void ShortcutButton::updateTitle() {
    const auto& title = recording_ ? prompt : savedTitle;
    setText(QString(title).replace(QLatin1Char('&'), QLatin1String("&&")));
    if (title != accessibleDescription()) {
        setAccessibleDescription(title);
    }
}

// Without the focus nothing would tell that the user has turned to something else.
void ShortcutButton::grabKeyboardIfFocused() {
    if (recording_ && hasFocus() && !grab_) {
        grab_.emplace(*this, hotKeys_);
    }
}

void ShortcutButton::refuse() {
    constexpr int flash = 200; // milliseconds
    alertSound_.beep();
    refusal_.start(flash, this);
    update();
}

void ShortcutButton::timerEvent(QTimerEvent* event) {
    if (event->timerId() == refusal_.timerId()) {
        refusal_.stop();
        update();
    }
    QPushButton::timerEvent(event);
}

void ShortcutButton::stop() {
    recording_ = false;
    grab_.reset();
    refusal_.stop();
    update();
}

void ShortcutButton::cancel() {
    if (recording_) {
        stop();
        updateTitle();
    }
}

void ShortcutButton::giveFocusUp() {
    clearFocus();
    window()->installEventFilter(this);
}

// Of the window: the toolkit would let Tab begin with its first part.
bool ShortcutButton::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || window()->focusWidget() != nullptr || !isVisible()) {
        return false;
    }
    const auto key = static_cast<QKeyEvent*>(event)->key();
    if (key != Qt::Key_Tab && key != Qt::Key_Backtab) {
        return false;
    }
    watched->removeEventFilter(this);
    setFocus(Qt::OtherFocusReason);
    return focusNextPrevChild(key == Qt::Key_Tab);
}

bool ShortcutButton::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        if (recording_) {
            event->accept();
            return true;
        }
        break;
    case QEvent::KeyPress:
        // Before Tab moves the focus.
        if (recording_) {
            event->accept();
            handleKey(*static_cast<QKeyEvent*>(event));
            return true;
        }
        break;
    case QEvent::WindowDeactivate:
        cancel();
        break;
    default:
        break;
    }
    return QPushButton::event(event);
}

// Of a button that does not record: the space bar does not press it, and keys that mean something
// to the window go there.
void ShortcutButton::keyPressEvent(QKeyEvent* event) {
    event->setAccepted(isPlain(*event));
    if (isPlain(*event) && isEnter(*event) && !event->isAutoRepeat()) {
        record();
    }
}

void ShortcutButton::keyReleaseEvent(QKeyEvent* event) {
    event->setAccepted(recording_ || isPlain(*event));
}

void ShortcutButton::handleKey(const QKeyEvent& event) {
    if (event.isAutoRepeat()) {
        return;
    }
    if (const auto press = keyboard_.press({.key = event.nativeScanCode(),
                                            .state = event.nativeModifiers(),
                                            .symbol = event.nativeVirtualKey()})) {
        handlePress(*press);
    } else if (!keyboard_.isModifier(event.nativeScanCode())) {
        refuse();
    }
}

// The keyboard is given back before the new shortcut is known to anybody: it may be registered at
// once.
void ShortcutButton::handlePress(const KeyPress& press) {
    if (press.keyCode == escapeKey) {
        cancel();
        giveFocusUp();
    } else if (clears(press)) {
        stop();
        report(std::nullopt);
    } else if (const auto shortcut = Shortcut::fromKeyPress(press)) {
        cancel();
        giveFocusUp();
        report(shortcut);
    } else {
        refuse();
    }
}

void ShortcutButton::report(const std::optional<Shortcut>& shortcut) const {
    if (onShortcut) {
        onShortcut(shortcut);
    }
}

void ShortcutButton::focusInEvent(QFocusEvent* event) {
    QPushButton::focusInEvent(event);
    grabKeyboardIfFocused();
}

void ShortcutButton::focusOutEvent(QFocusEvent* event) {
    cancel();
    QPushButton::focusOutEvent(event);
}

void ShortcutButton::hideEvent(QHideEvent* event) {
    cancel();
    QPushButton::hideEvent(event);
}

void ShortcutButton::changeEvent(QEvent* event) {
    if (event->type() == QEvent::EnabledChange && !isEnabled()) {
        cancel();
    }
    QPushButton::changeEvent(event);
}

void ShortcutButton::paintEvent(QPaintEvent* event) {
    QPushButton::paintEvent(event);
    if (recording_) {
        constexpr double lineWidth = 2;
        constexpr double radius = 5;
        constexpr double inset = lineWidth / 2;
        auto color = palette().color(QPalette::Active, QPalette::Highlight);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(color, lineWidth));
        if (refusal_.isActive()) {
            color.setAlphaF(0.5F);
            painter.setBrush(color);
        }
        painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius,
                                radius);
    }
}

} // namespace vantrel
