#include "ui/components/switch_toggle.h"

#include "ui/components/accessibility.h"
#include "ui/components/style.h"

#include <QPainter>

namespace vantrel {

namespace {

constexpr int gap = 8; // between title and switch

} // namespace

SwitchToggle::SwitchToggle(ViewContext& view, const Wording& title, const Binding<bool>& value,
                           ControlSize size)
    : size_(size) {
    // The toolkit's own check box would be flipped by screen readers without a click.
    setAccessibleRole(this, QAccessible::CheckBox);
    setFont(bodyText.font());
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, [value] { value.set(!value.get()); });
    nameForScreenReaders(view, this, title);
    view.follow(this, [this, &view, title, value] {
        setText(view.say(title));
        setChecked(value.get());
    });
}

QSize SwitchToggle::trackSize() const {
    return size_ == ControlSize::regular ? QSize(38, 22) : QSize(28, 16);
}

QSize SwitchToggle::sizeHint() const {
    const QSize track = trackSize();
    const int text = fontMetrics().horizontalAdvance(this->text());
    return {text + gap + track.width() + 2, std::max(track.height() + 2, fontMetrics().height())};
}

bool SwitchToggle::hitButton(const QPoint& point) const {
    return rect().contains(point);
}

void SwitchToggle::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(toneColor(Tone::primary, palette()));
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter, text());

    const QSizeF size = trackSize();
    const QRectF track(QPointF(width() - size.width() - 1, (height() - size.height()) / 2), size);
    const double radius = size.height() / 2;
    drawChrome(painter, palette(), track,
               {.fill = isChecked() ? Paint{Tone::accent, 1} : Paint{Tone::primary, 0.18},
                .radius = radius});
    const QPointF knob(isChecked() ? track.right() - radius : track.left() + radius,
                       track.center().y());
    painter.setPen(QPen(QColor(0, 0, 0, 28), 0.5));
    painter.setBrush(isDown() ? QColor(0xE8, 0xE8, 0xE8) : QColor(Qt::white));
    painter.drawEllipse(knob, radius - 2, radius - 2);
    drawFocusRing(painter, *this, track.adjusted(-1, -1, 1, 1), radius + 1);
}

} // namespace vantrel
