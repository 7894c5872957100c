#pragma once

#include "ui/components/background.h"
#include "ui/components/view_context.h"

#include <optional>

namespace vantrel {

// How high the section of a mode is, in points, on a main screen of which that height is free, or
// when there is none, with texts of that scale.
[[nodiscard]] int panelSectionHeight(CursorMode mode, std::optional<double> visibleHeight,
                                     double textScale = 1);

// What opens from the status item: the mode, and the few settings that it has. It is always as wide
// as its hint, and as high when everything is to be seen.
class MenuPanel : public VantrelBackground {
public:
    // In points: 340 with texts of the usual size.
    [[nodiscard]] static int ownWidth();

    explicit MenuPanel(ViewContext& view);

    [[nodiscard]] QSize sizeHint() const override {
        return {ownWidth(), heightForWidth(ownWidth())};
    }

private:
    MenuPanel(ViewContext& view, QWidget* notice, QWidget* section);

    Subscription screens_;
};

} // namespace vantrel
