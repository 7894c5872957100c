#pragma once

#include "overlay/overlay_view.h"
#include "platform/display.h"
#include "platform/time.h"
#include "preferences/preferences.h"

#include <QBasicTimer>
#include <QWidget>

#include <optional>

namespace vantrel {

// A sample of the highlight or of the laser under an arrow pointer. When it is interactive and a
// highlight, a click into it plays the click effect where it was clicked; the space bar plays it at
// the pointer. It repaints itself only while one plays.
class PreviewCanvas : public QWidget {
public:
    // Both must outlive the canvas.
    PreviewCanvas(const Clock& clock, const CursorImages& cursors, QWidget* parent = nullptr);

    // The mode in the preferences does not count.
    void setPreferences(const AppPreferences& preferences);
    void setLaser(bool laser);
    // Otherwise clicks go to what lies behind the canvas.
    void setInteractive(bool interactive);

    // Does nothing for a laser, and where the click settings want nothing to be shown. The point is
    // in the widget's coordinates. What plays already ends.
    void playClick(QPointF point, MouseButton button);
    // The effect that plays now. Its point has y upward from the canvas's bottom-left corner, as on
    // a desktop.
    [[nodiscard]] const std::optional<ClickAnimation>& click() const { return click_; }
    [[nodiscard]] bool isTicking() const { return timer_.isActive(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    [[nodiscard]] Effect effect() const;
    void stop();
    void updateFocusPolicy();
    void drawPointer(QPainter& painter);

    const Clock& clock_;
    const CursorImages& cursors_;
    CursorImage cursor_;
    double cursorScale_ = 0; // that the picture was asked for
    AppPreferences preferences_;
    bool laser_ = false;
    bool interactive_ = true;
    std::optional<ClickAnimation> click_;
    QBasicTimer timer_;
};

} // namespace vantrel
