#pragma once

#include "ui/components/text.h"

#include <QPointer>
#include <QWidget>

#include <optional>

namespace vantrel {

class ViewContext;

// A titled group of controls on a sheet of its own.
class SectionCard : public QWidget {
public:
    SectionCard(ViewContext& view, const Wording& title, QWidget* content)
        : SectionCard(view, title, std::nullopt, content) {}
    SectionCard(ViewContext& view, const Wording& title, const std::optional<Wording>& subtitle,
                QWidget* content);
    ~SectionCard() override;
    SectionCard(const SectionCard&) = delete;
    SectionCard& operator=(const SectionCard&) = delete;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    void placeShadow();

    QPointer<QWidget> shadow_; // the sibling right below the card, which is wider than the card
};

} // namespace vantrel
