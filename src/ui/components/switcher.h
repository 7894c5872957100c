#pragma once

#include "ui/components/view_context.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

namespace vantrel {

// Shows one of several parts. Each is built when it is first shown, and kept; while it is not shown
// it is not brought up to date either. When the keyboard is in a part that goes, it
// comes to rest before the first stop of the next one.
class Switcher : public QWidget {
public:
    using Builder = std::function<QWidget*(ViewContext& view)>;

    // The index says which of the parts is to be shown now.
    Switcher(ViewContext& view, const std::function<std::size_t()>& index,
             const std::vector<Builder>& builders);

    [[nodiscard]] QWidget* current() const { return current_; }

private:
    struct Part {
        Builder build;
        std::unique_ptr<ViewContext> view;
        QWidget* widget = nullptr; // null until it is first shown
    };

    void showPart(Part& part);
    void visitHere(const QWidget& part);

    std::vector<Part> parts_;
    QWidget* current_ = nullptr;
};

} // namespace vantrel
