#pragma once

#include "ui/components/text.h"

#include <QWidget>

#include <optional>

class QPainter;

namespace vantrel {

class ViewContext;

// A titled group of controls on a sheet of its own.
class SectionCard : public QWidget {
public:
    SectionCard(ViewContext& view, const Wording& title, QWidget* content)
        : SectionCard(view, title, std::nullopt, content) {}
    SectionCard(ViewContext& view, const Wording& title, const std::optional<Wording>& subtitle,
                QWidget* content);

    // Of a card that lies there. For what lies below it and is larger.
    void drawShadow(QPainter& painter, const QRect& card) const;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace vantrel
