#pragma once

#include "ui/components/style.h"
#include "ui/components/view_context.h"

#include <QMargins>
#include <QPushButton>

#include <functional>
#include <string_view>

namespace vantrel {

// A button without a frame, whose face is composed of parts.
class PlainButton : public QPushButton {
public:
    PlainButton(ViewContext& view, const Wording& name, const std::function<void()>& action,
                QWidget* face);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& point) const override;
};

// A pictogram alone; screen readers are told the name.
[[nodiscard]] PlainButton* iconButton(ViewContext& view, std::string_view symbol, int fontSize,
                                      Tone tone, const Wording& name,
                                      const std::function<void()>& action,
                                      const QMargins& padding = {4, 4, 4, 4});
// A pictogram with its title beside it.
[[nodiscard]] PlainButton* labelButton(ViewContext& view, std::string_view symbol,
                                       const Wording& title, const TextStyle& style,
                                       const std::function<void()>& action);

// Clicks the button when the key is Enter, once however long that is held. Returns whether it is.
bool clickOnEnter(QAbstractButton& button, const QKeyEvent& event);

enum class ButtonRole : unsigned char { normal, primary, destructive };

// The desktop's own kind of button.
[[nodiscard]] QPushButton* pushButton(ViewContext& view, const Wording& title,
                                      const std::function<void()>& action,
                                      ButtonRole role = ButtonRole::normal);

} // namespace vantrel
