#pragma once

#include "ui/components/view_context.h"

namespace vantrel {

// A capsule that tells whether something is on.
class StatusBadge : public QWidget {
public:
    StatusBadge(ViewContext& view, const Wording& title, const std::function<bool()>& active);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool active_ = false;
};

} // namespace vantrel
