#include "overlay/preview_canvas.h"

#include "overlay/effect_drawing.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTimerEvent>

namespace vantrel {

namespace {

constexpr double cornerRadius = 12;
constexpr int frameInterval = 17; // milliseconds: the timer counts in whole ones

} // namespace

PreviewCanvas::PreviewCanvas(const Clock& clock, const CursorImages& cursors, QWidget* parent)
    : QWidget(parent), clock_(clock), cursors_(cursors) {
    updateFocusPolicy();
}

void PreviewCanvas::setPreferences(const AppPreferences& preferences) {
    preferences_ = preferences;
    update();
}

void PreviewCanvas::setLaser(bool laser) {
    laser_ = laser;
    updateFocusPolicy();
    update();
}

void PreviewCanvas::setInteractive(bool interactive) {
    interactive_ = interactive;
    setAttribute(Qt::WA_TransparentForMouseEvents, !interactive);
    updateFocusPolicy();
    update();
}

void PreviewCanvas::updateFocusPolicy() {
    setFocusPolicy(interactive_ && !laser_ ? Qt::TabFocus : Qt::NoFocus);
}

Effect PreviewCanvas::effect() const {
    return effectOf(laser_ ? CursorMode::laser : CursorMode::highlight, preferences_);
}

void PreviewCanvas::playClick(QPointF point, MouseButton button) {
    if (!effect().ringOf(button)) {
        return;
    }
    click_ = ClickAnimation{.id = QUuid::createUuid(),
                            .point = {point.x(), height() - point.y()},
                            .started = clock_.uptime(),
                            .style = preferences_.click.style,
                            .color = toQColor(preferences_.highlight.color)};
    timer_.start(frameInterval, Qt::PreciseTimer, this);
    update();
}

void PreviewCanvas::stop() {
    click_.reset();
    timer_.stop();
}

void PreviewCanvas::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().base());
    painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);

    painter.save();
    painter.translate(0, height());
    painter.scale(1, -1);
    const QPointF middle(width() / 2.0, height() / 2.0);
    EffectDrawing::drawDiscs(painter, middle, effect());
    if (click_) {
        EffectDrawing::drawClick(painter, *click_, clock_.uptime());
    }
    painter.restore();
    drawPointer(painter);
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange)) {
        painter.setPen(QPen(palette().highlight(), 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), cornerRadius, cornerRadius);
    }
}

void PreviewCanvas::drawPointer(QPainter& painter) {
    if (cursorScale_ != devicePixelRatio()) {
        cursorScale_ = devicePixelRatio();
        cursor_ = cursors_.arrow(cursorScale_);
    }
    painter.drawImage(QPointF(width() / 2.0, height() / 2.0) - cursor_.hotSpot, cursor_.image);
}

void PreviewCanvas::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        playClick(event->position(), MouseButton::left);
    } else if (event->button() == Qt::RightButton) {
        playClick(event->position(), MouseButton::right);
    }
}

void PreviewCanvas::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Space) {
        QWidget::keyPressEvent(event);
        return;
    }
    playClick({width() / 2.0, height() / 2.0},
              preferences_.click.left ? MouseButton::left : MouseButton::right);
}

void PreviewCanvas::timerEvent(QTimerEvent* event) {
    if (event->timerId() != timer_.timerId()) {
        QWidget::timerEvent(event);
        return;
    }
    if (click_ && !click_->isLive(clock_.uptime())) {
        stop();
    }
    update();
}

void PreviewCanvas::hideEvent(QHideEvent* /*event*/) {
    stop();
}

} // namespace vantrel
