#include "ui/components/slider.h"

#include "ui/components/style.h"

#include <QAccessibleWidget>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>

namespace vantrel {

namespace {

constexpr double knobRadius = 8;
constexpr double grooveHeight = 4;
constexpr int stepsPerUnit = 100; // finer than any display

// Tells the value as it is shown, not the slider's steps.
class SliderAccessible final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit SliderAccessible(Slider& slider)
        : QAccessibleWidget(&slider, QAccessible::Slider), slider_(slider) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    [[nodiscard]] QString text(QAccessible::Text part) const override {
        return part == QAccessible::Value ? slider_.scale().text(slider_.shownValue())
                                          : QAccessibleWidget::text(part);
    }
    [[nodiscard]] QVariant currentValue() const override { return shown(slider_.shownValue()); }
    void setCurrentValue(const QVariant& value) override {
        const double unit = slider_.scale().percent ? 0.01 : 1;
        slider_.setValue(slider_.stepOf(value.toDouble() * unit));
    }
    [[nodiscard]] QVariant maximumValue() const override {
        return shown(slider_.scale().range.high);
    }
    [[nodiscard]] QVariant minimumValue() const override {
        return shown(slider_.scale().range.low);
    }
    [[nodiscard]] QVariant minimumStepSize() const override { return 1.0; }

private:
    [[nodiscard]] QVariant shown(double value) const {
        return static_cast<double>(slider_.scale().shown(value));
    }

    Slider& slider_;
};

QAccessibleInterface* describe(const QString& /*className*/, QObject* object) {
    auto* slider = qobject_cast<Slider*>(object);
    return slider != nullptr ? new SliderAccessible(*slider) : nullptr;
}

} // namespace

Slider::Slider(const ValueScale& scale, const std::function<void(double)>& moved)
    : QSlider(Qt::Horizontal), scale_(scale) {
    static const int installed = (QAccessible::installFactory(describe), 0);
    Q_UNUSED(installed)
    const double units = (scale.range.high - scale.range.low) * (scale.percent ? 100 : 1);
    setRange(0, static_cast<int>(std::lround(units * stepsPerUnit)));
    setSingleStep(stepsPerUnit);
    setPageStep(maximum() / 10);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(this, &QSlider::valueChanged, this, [this, moved] { moved(shownValue()); });
}

int Slider::stepOf(double value) const {
    return static_cast<int>(std::lround((value - scale_.range.low) /
                                        (scale_.range.high - scale_.range.low) * maximum()));
}

void Slider::showValue(double value) {
    const QSignalBlocker silence(this);
    setValue(stepOf(value));
}

double Slider::shownValue() const {
    return std::lerp(scale_.range.low, scale_.range.high, static_cast<double>(value()) / maximum());
}

double Slider::knobX() const {
    return knobRadius + (width() - 2 * knobRadius) * value() / maximum();
}

void Slider::dragTo(double x) {
    const double room = std::max(width() - 2 * knobRadius, 1.0);
    setValue(static_cast<int>(std::lround((x - knobRadius) / room * maximum())));
}

void Slider::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    const double offset = event->position().x() - knobX();
    grip_ = std::abs(offset) <= knobRadius ? offset : 0;
    setSliderDown(true);
    dragTo(event->position().x() - grip_);
}

void Slider::mouseMoveEvent(QMouseEvent* event) {
    if (isSliderDown()) {
        dragTo(event->position().x() - grip_);
    }
}

void Slider::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        setSliderDown(false);
        update();
    }
}

void Slider::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void Slider::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double middle = height() / 2.0;
    QRectF groove(0, middle - grooveHeight / 2, width(), grooveHeight);
    drawChrome(painter, palette(), groove, {.fill = {Tone::primary, 0.14}, .radius = 2});
    groove.setWidth(knobX());
    drawChrome(painter, palette(), groove, {.fill = {Tone::accent, 1}, .radius = 2});

    const QRectF knob(knobX() - knobRadius, middle - knobRadius, 2 * knobRadius, 2 * knobRadius);
    painter.setPen(QPen(QColor(0, 0, 0, 48), 1));
    painter.setBrush(isSliderDown() ? QColor(0xE8, 0xE8, 0xE8) : QColor(Qt::white));
    painter.drawEllipse(knob.adjusted(1, 1, -1, -1));
    drawFocusRing(painter, *this, knob.adjusted(-1, -1, 1, 1), knobRadius + 1);
}

} // namespace vantrel
