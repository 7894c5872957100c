#pragma once

#include "ui/components/view_context.h"

#include <QTranslator>

namespace vantrel {

// Lets the toolkit say its own texts, such as those of its colour dialog, in the language of the
// interface; in English where its translations are not installed. Needs the application object.
class ToolkitLanguage {
public:
    explicit ToolkitLanguage(ViewContext& view);

private:
    QTranslator chinese_;
    bool english_ = true; // what the toolkit speaks
};

} // namespace vantrel
