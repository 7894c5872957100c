#pragma once

#include "platform/control.h"

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariantMap>

namespace vantrel {

// The interface org.vantrel.Vantrel1 as the bus sees it. The names are those on the bus.
class ControlAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.vantrel.Vantrel1")
    // off, highlight or laser.
    Q_PROPERTY(QString Mode READ mode)
    Q_PROPERTY(bool ClickAvailable READ clickAvailable)
    // duplicate or registration; empty when there is none.
    Q_PROPERTY(QString HotkeyError READ hotkeyError)
    Q_PROPERTY(QString Version READ version)

public:
    ControlAdaptor(QObject* service, RemoteControl control);

    [[nodiscard]] QString mode() const;
    [[nodiscard]] bool clickAvailable() const;
    [[nodiscard]] QString hotkeyError() const;
    [[nodiscard]] QString version() const;
    // Those that are not the same for the whole run.
    [[nodiscard]] QVariantMap changingProperties() const;

    // Anything that is no mode is an invalid argument.
    Q_SLOT void SetMode(const QString& mode, const QDBusMessage& message);
    Q_SLOT void Toggle(const QString& mode, const QDBusMessage& message);
    Q_SLOT void ShowSettings();
    Q_SLOT void Quit();

    Q_SIGNAL void ModeChanged(const QString& mode);

private:
    RemoteControl control_;
};

// The running program on the session bus: the name org.vantrel.Vantrel, the object
// /org/vantrel/Vantrel. Where another run of the same user has the name, this one waits for it. A
// bus that is missing or goes is done without.
class ControlService final : public QObject {
public:
    explicit ControlService(RemoteControl control);
    ~ControlService() override;
    Q_DISABLE_COPY_MOVE(ControlService)

    // Something may be different from what the bus was told; it is told in a later turn of the
    // event loop.
    void announce();

private:
    void announceNow();

    ControlAdaptor* adaptor_;
    QVariantMap announced_;
    bool pending_ = false;
};

} // namespace vantrel
