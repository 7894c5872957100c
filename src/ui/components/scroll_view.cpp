#include "ui/components/scroll_view.h"

#include "ui/components/section_card.h"
#include "ui/components/stack.h"
#include "ui/components/style.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPointer>
#include <QScrollBar>
#include <QStyleOptionSlider>

#include <vector>

namespace vantrel {

namespace {

constexpr int lineHeight = 24; // that an arrow key or a notch of the wheel's third scrolls

// A slim bar that shows where the content is, and can be dragged.
class Indicator final : public QScrollBar {
public:
    Indicator() : QScrollBar(Qt::Vertical) {
        setAttribute(Qt::WA_Hover);
        setSingleStep(lineHeight);
    }

    [[nodiscard]] QSize sizeHint() const override { return {ScrollView::gutter, 40}; }

protected:
    // Some styles take a scroll bar for one that fills all of its rectangle.
    bool event(QEvent* event) override {
        const bool done = QScrollBar::event(event);
        if (event->type() == QEvent::Polish || event->type() == QEvent::StyleChange) {
            setAttribute(Qt::WA_OpaquePaintEvent, false);
        }
        return done;
    }
    void paintEvent(QPaintEvent* /*event*/) override {
        if (minimum() == maximum()) {
            return;
        }
        QStyleOptionSlider option;
        initStyleOption(&option);
        const QRectF knob = style()->subControlRect(QStyle::CC_ScrollBar, &option,
                                                    QStyle::SC_ScrollBarSlider, this);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const double opacity = isSliderDown() ? 0.5 : underMouse() ? 0.4 : 0.24;
        drawChrome(painter, palette(), knob.adjusted(2, 2, -2, -2),
                   {.fill = {Tone::primary, opacity}, .radius = 3});
    }
};

// Its cards throw their shadows on it: one of a card's own would end where the card does.
class Page final : public Stack {
public:
    explicit Page(QWidget* content) : Stack(Qt::Vertical, 0, {content}, Alignment::leading) {
        if ((content->sizePolicy().verticalPolicy() & QSizePolicy::ExpandFlag) == 0) {
            add(spacer());
        }
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        for (const auto& card : cards_) {
            if (card != nullptr && card->isVisibleTo(this)) {
                card->drawShadow(painter, QRect(card->mapTo(this, QPoint()), card->size()));
            }
        }
    }
    bool event(QEvent* event) override {
        if (event->type() == QEvent::LayoutRequest) {
            findCards();
        }
        return Stack::event(event);
    }

private:
    void findCards() {
        cards_.clear();
        for (auto* part : findChildren<QWidget*>()) {
            if (auto* card = dynamic_cast<SectionCard*>(part)) {
                cards_.emplace_back(card);
            }
        }
        update(); // the shadows of cards that move or go too
    }

    std::vector<QPointer<SectionCard>> cards_;
};

} // namespace

ScrollView::ScrollView(QWidget* content) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::ClickFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBar(new Indicator);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setWidgetResizable(true);
    setWidget(new Page(content));
    widget()->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget* /*before*/, QWidget* now) { reveal(now); });
}

// Not when it was the pointer that chose the part: it must not move away below it.
void ScrollView::reveal(QWidget* focused) {
    constexpr int margin = 16;
    if (focused != nullptr && widget()->isAncestorOf(focused) &&
        window()->testAttribute(Qt::WA_KeyboardFocusChange)) {
        ensureWidgetVisible(focused, margin, margin);
    }
}

bool ScrollView::scrollBy(Qt::Key key) {
    const auto act = [this](QAbstractSlider::SliderAction action) {
        verticalScrollBar()->triggerAction(action);
        return true;
    };
    switch (key) {
    case Qt::Key_PageUp:
        return act(QAbstractSlider::SliderPageStepSub);
    case Qt::Key_PageDown:
        return act(QAbstractSlider::SliderPageStepAdd);
    case Qt::Key_Home:
        return act(QAbstractSlider::SliderToMinimum);
    case Qt::Key_End:
        return act(QAbstractSlider::SliderToMaximum);
    case Qt::Key_Up:
        return act(QAbstractSlider::SliderSingleStepSub);
    case Qt::Key_Down:
        return act(QAbstractSlider::SliderSingleStepAdd);
    default:
        return false;
    }
}

void ScrollView::keyPressEvent(QKeyEvent* event) {
    event->setAccepted(scrollBy(static_cast<Qt::Key>(event->key())));
}

} // namespace vantrel
