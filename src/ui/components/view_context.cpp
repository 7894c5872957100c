#include "ui/components/view_context.h"

#include "ui/components/stack.h"

#include <QApplication>

namespace vantrel {

ViewContext::ViewContext(AppState& state, const Desktop& desktop)
    : root_(*this), state_(state), desktop_(desktop) {
    const auto observe = [this](auto& observable) {
        subscriptions_.push_back(observable.observe([this](const auto&) { publish(); }));
    };
    observe(state.preferences());
    observe(state.mode());
    observe(state.marks());
    observe(state.pointerKnown());
    observe(state.clickAvailable());
    observe(state.hotkeyError());
    observe(state.systemMessage());
    observe(state.selectedTab());
}

ViewContext::ViewContext(ViewContext* root)
    : root_(*root), state_(root->state_), desktop_(root->desktop_) {}

std::unique_ptr<ViewContext> ViewContext::ofPart() {
    return std::unique_ptr<ViewContext>(new ViewContext(&root_));
}

void ViewContext::publish() {
    if (std::exchange(pending_, true)) {
        return;
    }
    QMetaObject::invokeMethod(
        this,
        [this] {
            pending_ = false;
            Q_EMIT changed();
            for (auto* window : QApplication::topLevelWidgets()) {
                if (window->isVisible()) {
                    settleLayout(*window);
                }
            }
        },
        Qt::QueuedConnection);
}

void ViewContext::follow(QObject* follower, const std::function<void()>& update) {
    update();
    connect(this, &ViewContext::changed, follower, update);
}

QWidget* ViewContext::showWhile(QWidget* part, std::function<bool()> condition) {
    // A part that has no parent yet would come up as a window.
    const auto update = [part, condition = std::move(condition)] {
        if (const bool shown = condition(); !shown || part->parentWidget() != nullptr) {
            part->setVisible(shown);
        }
    };
    follow(part, update);
    return part;
}

} // namespace vantrel
