#pragma once

#include "platform/shell.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>

#include <functional>

namespace vantrel {

// What the portal of a session tells of the appearance that its user has chosen. The toolkit reads
// that in GNOME neither for its colours nor for its texts.
class PortalAppearance final : public QObject {
    Q_OBJECT

public:
    // The callback comes when there is something to tell, and at each change. Nobody is started.
    PortalAppearance(QDBusConnection bus, std::function<void(const Appearance&)> changed);

private:
    Q_SLOT void note(const QDBusMessage& message);

    void ask();
    // Whether that is one of those that count.
    bool take(const QString& group, const QString& key, const QVariant& value);

    QDBusConnection bus_;
    std::function<void(const Appearance&)> changed_;
    QString owner_;
    Appearance appearance_;
};

} // namespace vantrel
