#include "ui/components/toolkit_language.h"

#include <QCoreApplication>
#include <QLibraryInfo>

#include <utility>

namespace vantrel {

ToolkitLanguage::ToolkitLanguage(ViewContext& view) {
    view.follow(&chinese_, [this, &view] {
        if (view.english() == std::exchange(english_, view.english())) {
            return;
        }
        if (english_) {
            QCoreApplication::removeTranslator(&chinese_);
        } else if (!chinese_.isEmpty() ||
                   chinese_.load(QStringLiteral("qtbase_zh_CN"),
                                 QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
            QCoreApplication::installTranslator(&chinese_);
        }
    });
}

} // namespace vantrel
