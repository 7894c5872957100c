#pragma once

#include "ui/components/background.h"
#include "ui/components/view_context.h"

#include <QPointer>

#include <vector>

class QMessageBox;

namespace vantrel {

// Every preference, in five tabs.
class SettingsView : public VantrelBackground {
public:
    explicit SettingsView(ViewContext& view);

    // Asks whether to reset all preferences, beside everything else that goes on.
    void confirmReset();
    // Null while nothing is to be confirmed.
    [[nodiscard]] QMessageBox* resetAlert() const;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    // Ctrl+Tab shows the next tab.
    void keyPressEvent(QKeyEvent* event) override;

private:
    // Of the tabs, in the order of SettingsTab.
    SettingsView(ViewContext& view, const std::vector<QWidget*>& tabButtons);

    ViewContext& view_;
    const std::vector<QWidget*> tabButtons_;
    QPointer<QMessageBox> alert_;
};

} // namespace vantrel
