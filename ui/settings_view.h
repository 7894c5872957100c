#pragma once

#include "ui/components/background.h"
#include "ui/components/view_context.h"

#include <QPointer>

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
    void hideEvent(QHideEvent* event) override;

private:
    ViewContext& view_;
    QPointer<QMessageBox> alert_;
};

} // namespace vantrel
