#pragma once

#include "ui/components/value_slider.h"

#include <QSlider>

#include <functional>

namespace vantrel {

// A slider over a range of values. The pointer moves it freely, the arrow keys by one unit of what
// is shown, the wheel not at all, since it scrolls what the slider lies in.
class Slider : public QSlider {
    Q_OBJECT

public:
    // Calls with each value that the user moves it to.
    Slider(const ValueScale& scale, const std::function<void(double)>& moved);

    void showValue(double value);
    [[nodiscard]] double shownValue() const;
    [[nodiscard]] const ValueScale& scale() const { return scale_; }
    [[nodiscard]] int stepOf(double value) const;

    [[nodiscard]] QSize sizeHint() const override { return {120, 20}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {60, 20}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    [[nodiscard]] double knobX() const;
    void dragTo(double x);

    ValueScale scale_;
    double grip_ = 0; // from the knob's middle to where it is held
};

} // namespace vantrel
