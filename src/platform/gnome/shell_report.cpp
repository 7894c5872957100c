#include "platform/gnome/shell_report.h"

namespace vantrel {

MarksState stateOf(const ShellReport& report) {
    if (!report.hasShell) {
        return MarksState::none;
    }
    if (report.version) {
        return *report.version != extensionVersion ? MarksState::otherVersion
               : report.servesOther                ? MarksState::busy
               : report.hasFailed                  ? MarksState::failed
                                                   : MarksState::available;
    }
    if (!report.extension) {
        return report.isAwaited ? MarksState::needsLogin : MarksState::off;
    }
    switch (*report.extension) {
    case ExtensionState::error:
        return MarksState::failed;
    case ExtensionState::outOfDate:
        return MarksState::unsupported;
    default:
        return MarksState::off;
    }
}

QString extensionFor(const QString& shellVersion) {
    const bool hasOldImports = shellVersion.section(QLatin1Char('.'), 0, 0).toInt() < 45;
    return hasOldImports ? QStringLiteral("marks43@vantrel.org")
                         : QStringLiteral("marks@vantrel.org");
}

} // namespace vantrel
