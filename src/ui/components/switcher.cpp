#include "ui/components/switcher.h"

#include <QVBoxLayout>

#include <utility>

namespace vantrel {

namespace {

bool hasKeyboard(const QWidget& part) {
    const auto* focused = part.window()->focusWidget();
    return focused != nullptr && (focused == &part || part.isAncestorOf(focused));
}

} // namespace

// The keyboard would come last to what is added last.
void Switcher::visitHere(const QWidget& part) {
    std::vector<QWidget*> stops;
    for (auto* next = part.nextInFocusChain(); next != &part; next = next->nextInFocusChain()) {
        if (part.isAncestorOf(next) && next->focusPolicy() != Qt::NoFocus) {
            stops.push_back(next);
        }
    }
    setFocusPolicy(Qt::TabFocus); // only such a widget can be followed by another
    QWidget* before = this;
    for (auto* stop : stops) {
        setTabOrder(std::exchange(before, stop), stop);
    }
    setFocusPolicy(Qt::NoFocus);
}

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
        if (hasKeyboard(*current_)) {
            setFocus();
        }
        current_->hide();
    }
    current_ = part.widget;
    if (current_->parentWidget() != this) {
        layout()->addWidget(current_);
        visitHere(*current_);
    }
    current_->show();
}

} // namespace vantrel
