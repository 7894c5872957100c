#pragma once

#include <QString>

// Where a session's portal is found on the bus.

namespace vantrel::portal {

inline const auto service = QStringLiteral("org.freedesktop.portal.Desktop");
inline const auto path = QStringLiteral("/org/freedesktop/portal/desktop");

} // namespace vantrel::portal
