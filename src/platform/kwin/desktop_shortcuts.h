#pragma once

#include "platform/freedesktop/key_grabber.h"
#include "platform/kwin/kwin_script.h"

#include <QDBusConnection>
#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QString>

#include <cstdint>
#include <functional>
#include <vector>

namespace vantrel {

// Key combinations by the global shortcuts of a Plasma session, for as long as the script runs,
// which frees those of a program that is gone. They go by what a key produces, so the place of a
// key is looked up in the layout that is in use.
class DesktopShortcuts final : public QObject, public KeyGrabber {
    Q_OBJECT

public:
    struct Means {
        // What the toolkit calls the key in that layout of several, from 0, and Shift where it is
        // held for it. Counts as refused if the first of them is.
        std::function<QList<int>(const KeyCombination& keys, std::uint32_t layout)> keysOf;
        // As the system's settings list the shortcut, in the user's language.
        std::function<QString(std::uint32_t number)> nameOf;
    };
    // The script must outlive this.
    DesktopShortcuts(QDBusConnection bus, KWinScript& script, Means means);

    [[nodiscard]] bool takesKeys() const override {
        return script_.state() == MarksState::available;
    }
    [[nodiscard]] Subscription onKeysChange(std::function<void()> callback) override {
        return changes_.add(std::move(callback));
    }
    void grab(const std::vector<KeyGrab>& grabs) override;
    // KWin would not take it back from a program that is gone.
    void leaveKeys(bool /*left*/) override {}
    [[nodiscard]] bool canLeaveKeys() const override { return false; }
    // The keyboard has other layouts.
    void grabAgain();

private:
    Q_SLOT void pressed(const QString& component, const QString& action);
    Q_SLOT void released(const QString& component, const QString& action);
    Q_SLOT void layoutChanged(uint layout);
    Q_SLOT void askForLayout();

    void grabKey(const KeyGrab& grab);
    void checkOwner(int combination, const std::function<void()>& refuse);
    void free(std::uint32_t number);
    void freeOthers();

    QDBusConnection bus_;
    KWinScript& script_;
    Means means_;
    std::vector<KeyGrab> grabs_;
    std::vector<KeyGrab> asked_; // of these, in the layout that is in use
    std::uint32_t layout_ = 0;
    QString held_;            // the action whose keys are down
    QElapsedTimer heldSince_; // or heard of again since
    Observers<> changes_;
    Subscription scriptChanges_;
};

} // namespace vantrel
