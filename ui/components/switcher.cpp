#include "ui/components/switcher.h"

#include <QVBoxLayout>

namespace vantrel {

Switcher::Switcher(ViewContext& view, const std::function<std::size_t()>& index,
                   const std::vector<Builder>& builders) {
    for (const auto& builder : builders) {
        parts_.push_back({.build = builder, .view = view.ofPart()});
    }
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    view.follow(this, [this, index] { showPart(parts_[index()]); });
}

void Switcher::showPart(Part& part) {
    if (part.widget == nullptr) {
        part.widget = part.build(*part.view);
    } else {
        part.view->refresh();
    }
    if (part.widget == current_) {
        return;
    }
    if (current_ != nullptr) {
        current_->hide();
    }
    current_ = part.widget;
    layout()->addWidget(current_);
    current_->show();
}

} // namespace vantrel
