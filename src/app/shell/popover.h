#pragma once

#include "platform/input.h"
#include "platform/shell.h"
#include "platform/time.h"

#include <QTimer>
#include <QWidget>

#include <functional>
#include <optional>

namespace vantrel {

// A window that hangs at an item of the desktop and closes by itself: when a press goes elsewhere,
// when it loses the keyboard, on Escape, and when the displays change. Where the keyboard follows
// the pointer it may go to other windows on the way from the item. Where it hangs at an edge it
// also closes when it is not used. It grabs nothing, so shortcuts work and clicks reach what they
// were meant for. It is as large as its content wants.
class Popover : public QWidget {
public:
    // The desktop must outlive it.
    Popover(Application& application, EventMonitors& monitors, const Clock& clock);
    ~Popover() override;
    Popover(const Popover&) = delete;
    Popover& operator=(const Popover&) = delete;

    void setContent(QWidget* content);
    [[nodiscard]] bool hasContent() const { return content_ != nullptr; }
    // Takes the height that the content wants now; keeps its own when that is none.
    void fitContent();

    // Where it opens: at an item, or near the pointer when the place of that is not known; where
    // that of the pointer is not known either, where the desktop likes.
    void placeAt(const std::optional<QRect>& item);
    // Goes there again, where the desktop has put it elsewhere.
    void place();
    void performClose();
    // Whether the press that the pointer is at closed it a moment ago: the first half of a click
    // that means to close it. Tells of each press once.
    [[nodiscard]] bool closedByThisPress();

protected:
    bool event(QEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Dismissal {
        double uptime = 0;
        QPoint pointer;
    };

    void watchPresses();
    void dismiss();
    void loseKeyboard();
    void awaitUse();
    [[nodiscard]] bool hasKeyboard() const;

    Application& application_;
    EventMonitors& monitors_;
    const Clock& clock_;
    QWidget* content_ = nullptr;
    QRect item_;
    bool isItemKnown_ = false;
    bool hangs_ = false;
    QMetaObject::Connection screenChanges_;
    // At whose end it closes unless it has the keyboard.
    QTimer keyboardReturn_;
    QTimer disuse_;
    std::optional<EventMonitors::Token> presses_;
    std::optional<Dismissal> dismissal_;
};

} // namespace vantrel
