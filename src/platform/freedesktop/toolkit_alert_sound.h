#pragma once

#include "platform/shell.h"

#include <QApplication>

namespace vantrel {

// Of whatever the toolkit finds, as there is nobody who rings a bell for all compositors.
class ToolkitAlertSound final : public AlertSound {
public:
    void beep() override { QApplication::beep(); }
};

} // namespace vantrel
