#pragma once

#include "ui/components/view_context.h"

#include <QCheckBox>

namespace vantrel {

enum class ControlSize : unsigned char { regular, small };

// A title with a switch at the trailing edge.
class SwitchToggle : public QCheckBox {
public:
    SwitchToggle(ViewContext& view, const Wording& title, const Binding<bool>& value,
                 ControlSize size = ControlSize::regular);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& point) const override;
    void nextCheckState() override {} // the state's to change

private:
    [[nodiscard]] QSize trackSize() const;

    ControlSize size_;
};

} // namespace vantrel
