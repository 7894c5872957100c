#include "app/shell/popover.h"

#include "app/shell/popover_placement.h"
#include "app/shell/window_activation.h"
#include "platform/native_windows.h"
#include "ui/components/stack.h"
#include "ui/components/style.h"

#include <QApplication>
#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>

#include <chrono>
#include <utility>

namespace vantrel {

namespace {

// From a press that closes the popover to the desktop's word that the item was clicked, which may
// come with the release.
constexpr double clickDelay = 2; // seconds
// Where nothing tells whether the pointer has moved since.
constexpr double blindClickDelay = 0.5;
constexpr int clickRadius = 6; // points

constexpr EventMask presses = maskOf(EventType::leftMouseDown) | maskOf(EventType::rightMouseDown) |
                              maskOf(EventType::otherMouseDown);

// In which a keyboard that follows the pointer comes back to where that is.
constexpr std::chrono::milliseconds keyboardDelay(300);
// With the pointer elsewhere and without the keyboard, which a compositor may give to a window that
// hangs only once it is clicked. Nothing tells of presses elsewhere then.
constexpr std::chrono::milliseconds disuseDelay(3000);

constexpr int frameWidth = 1; // points

// Whether a window was opened from another one, such as a dialog of it.
bool belongsTo(const QWidget* window, const QWidget& owner) {
    while (window != nullptr && window != &owner) {
        window = window->parentWidget();
    }
    return window != nullptr;
}

QScreen& screenOf(const QRect& item) {
    auto* screen = QGuiApplication::screenAt(item.center());
    return screen != nullptr ? *screen : *QGuiApplication::primaryScreen();
}

} // namespace

Popover::Popover(Application& application, EventMonitors& monitors, const Clock& clock)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      application_(application),
      monitors_(monitors),
      clock_(clock) {
    setWindowTitle(QStringLiteral("Vantrel"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(frameWidth, frameWidth, frameWidth, frameWidth);
    layout->setSizeConstraint(QLayout::SetNoConstraint);
    const auto close = [this] { performClose(); };
    connect(qGuiApp, &QGuiApplication::screenAdded, this, close);
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, close);
    keyboardReturn_.setSingleShot(true);
    keyboardReturn_.setInterval(keyboardDelay);
    connect(&keyboardReturn_, &QTimer::timeout, this, [this] {
        if (!hasKeyboard()) {
            dismiss();
        }
    });
    disuse_.setSingleShot(true);
    disuse_.setInterval(disuseDelay);
    connect(&disuse_, &QTimer::timeout, this, [this] {
        if (!hasKeyboard()) {
            performClose(); // by no press
        }
    });
}

Popover::~Popover() {
    if (presses_) {
        monitors_.remove(*presses_);
    }
}

void Popover::setContent(QWidget* content) {
    content_ = content;
    layout()->addWidget(content);
}

void Popover::fitContent() {
    if (content_ == nullptr) {
        return;
    }
    settleLayout(*this);
    if (const QSize size = layout()->sizeHint(); size.height() > 2 * frameWidth) {
        setFixedSize(size);
    }
    if (isVisible()) {
        place();
    }
}

void Popover::placeAt(const std::optional<QRect>& item) {
    item_ = item.value_or(QRect(QCursor::pos(), QSize(1, 1)));
    isItemKnown_ = item.has_value();
    disconnect(screenChanges_);
    screenChanges_ =
        connect(&screenOf(item_), &QScreen::availableGeometryChanged, this, &Popover::performClose);
    fitContent();
    place();
}

void Popover::place() {
    auto& screen = screenOf(item_);
    const QRect area = availableAreaOf(screen);
    const QRect place = popoverPlacement(item_, size(), area);
    setFixedSize(place.size());
    move(place.topLeft());
    EdgePlace hanging;
    if (isItemKnown_) {
        hanging = edgePlace(place, area);
        hanging.display = &screen;
    }
    hangs_ = application_.hang(*this, hanging);
}

void Popover::performClose() {
    hide();
}

// Is told of presses only while it is open.
void Popover::watchPresses() {
    if (isVisible() == presses_.has_value()) {
        return;
    }
    if (!isVisible()) {
        monitors_.remove(*std::exchange(presses_, std::nullopt));
        return;
    }
    presses_ = monitors_.addGlobal(presses, [this](const Event&) {
        if (!belongsTo(QApplication::topLevelAt(QCursor::pos()), *this)) {
            dismiss();
        }
    });
}

void Popover::dismiss() {
    if (isVisible()) {
        dismissal_ = {clock_.uptime(), QCursor::pos()};
        performClose();
    }
}

bool Popover::hasKeyboard() const {
    return belongsTo(QApplication::activeWindow(), *this);
}

void Popover::loseKeyboard() {
    if (!isVisible() || hasKeyboard()) {
        return;
    }
    if (hangs_) {
        // It may lose it by changing its size, too.
        if (!underMouse()) {
            keyboardReturn_.start();
        }
        return;
    }
    const QPoint pointer = QCursor::pos();
    // Native windows know of the pointer only where it was over one of them last.
    if (hasNativeWindows() || geometry().contains(pointer)) {
        keyboardReturn_.start();
    } else if (!isOnTheWay(pointer, item_, geometry())) {
        dismiss();
    }
}

void Popover::awaitUse() {
    if (hangs_) {
        disuse_.start();
    }
}

bool Popover::closedByThisPress() {
    const auto dismissal = std::exchange(dismissal_, std::nullopt);
    const double delay = hasNativeWindows() ? blindClickDelay : clickDelay;
    return dismissal && clock_.uptime() - dismissal->uptime < delay &&
           (QCursor::pos() - dismissal->pointer).manhattanLength() < clickRadius;
}

bool Popover::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate) {
        // Which window has become active instead is known afterwards.
        QMetaObject::invokeMethod(this, &Popover::loseKeyboard, Qt::QueuedConnection);
    }
    const bool handled = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest && isVisible()) {
        fitContent();
    }
    return handled;
}

void Popover::enterEvent(QEnterEvent* event) {
    QWidget::enterEvent(event);
    disuse_.stop();
}

void Popover::leaveEvent(QEvent* event) {
    QWidget::leaveEvent(event);
    if (isVisible()) {
        awaitUse();
    }
}

void Popover::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        performClose();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void Popover::closeEvent(QCloseEvent* event) {
    hideInsteadOfClosing(*this, *event);
}

void Popover::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    watchPresses();
    awaitUse();
}

void Popover::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    keyboardReturn_.stop();
    disuse_.stop();
    watchPresses();
}

void Popover::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QRect inside = rect().adjusted(frameWidth, frameWidth, -frameWidth, -frameWidth);
    painter.fillRect(rect(), palette().window());
    painter.fillRect(rect(), toneColor(Tone::primary, palette(), 0.2));
    painter.fillRect(inside, palette().window());
}

} // namespace vantrel
