#pragma once

#include "platform/freedesktop/bus_structure.h"
#include "platform/freedesktop/key_grabber.h"
#include "platform/gnome/shell_report.h"
#include "platform/marks.h"
#include "platform/session.h"

#include <QByteArray>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QList>
#include <QObject>
#include <QRect>
#include <QString>
#include <QTimer>
#include <QVariantMap>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>

namespace vantrel {

// A key combination as the shell writes it, by a number of the caller's choice.
struct ShellShortcut {
    std::uint32_t number = 0;
    QString accelerator{};

    static auto members(auto& self) { return std::tie(self.number, self.accelerator); }
    bool operator==(const ShellShortcut&) const = default;
};

// An entry of a menu in the top bar.
struct ShellEntry {
    QString title{};          // empty for a dividing line
    std::uint32_t choice = 0; // 0 for none, 1 for one of several, 2 for the chosen one

    static auto members(auto& self) { return std::tie(self.title, self.choice); }
    bool operator==(const ShellEntry&) const = default;
};

// An item in the top bar.
struct ShellItem {
    QByteArray picture{}; // as a PNG
    QString description{};
    QList<ShellEntry> entries{};

    bool operator==(const ShellItem&) const = default;
};

// The program's side of its extension of GNOME Shell. Nothing waits for the shell: it is told when
// it listens, and all of it again each time that the extension comes back.
class ShellExtension final : public QObject, public Marks, public KeyGrabber {
    Q_OBJECT

public:
    // Of the session's bus. The folder is that of the installation which has the extension in
    // gnome-shell/extensions; the user's own gets a copy if the shell does not look there.
    ShellExtension(QDBusConnection bus, UserDefaults& defaults, std::filesystem::path dataFolder);

    [[nodiscard]] MarksState state() const override { return stateOf(report_); }
    [[nodiscard]] std::string_view drawer() const override { return "gnome-shell"; }
    [[nodiscard]] bool seesPresses() const override { return true; }
    [[nodiscard]] Subscription onChange(std::function<void()> callback) override;
    void show(const Effect& effect) override;
    void clear() override;
    void enable() override;

    [[nodiscard]] bool takesKeys() const override { return state() == MarksState::available; }
    [[nodiscard]] Subscription onKeysChange(std::function<void()> callback) override {
        return onChange(std::move(callback));
    }
    void grab(const std::vector<KeyGrab>& grabs) override;
    void leaveKeys(bool left) override;
    [[nodiscard]] bool canLeaveKeys() const override { return takesKeys(); }

    void setItem(const std::optional<ShellItem>& item);
    std::function<void(const QRect& place)> onItemClicked; // on the desktop
    std::function<void(std::uint32_t number)> onEntryChosen;

private:
    Q_SLOT void extensionChanged(const QString& uuid, const QVariantMap& info);
    Q_SLOT void pressed(uint number);
    Q_SLOT void itemClicked(const QDBusMessage& message);
    Q_SLOT void entryChosen(uint number);
    Q_SLOT void loseBus();

    void setShell(const QString& owner);
    void setAgent(const QString& owner);
    void askForExtension();
    void takeExtension(const QVariantMap& info);
    void switchOn();
    void tellEffect();
    void tellTheRest();
    void tellShortcuts();
    void tellItem();
    void connectAgent(bool on);
    void takeAnswer(const QDBusMessage& answer);
    template <typename Change>
    void update(Change change);
    void call(const QDBusMessage& message, std::function<void(const QDBusMessage&)> answered);
    // Again as long as the shell hangs, and no more once the peer, one of those above, has changed.
    void ask(const QString& peer, const QDBusMessage& question,
             const std::function<void(const QDBusMessage&)>& answered);

    QDBusConnection bus_;
    UserDefaults& defaults_;
    std::filesystem::path dataFolder_;
    ShellReport report_;
    QString shell_; // the unique names of those who are there
    QString agent_;
    QString uuid_; // of the flavour for this shell
    std::optional<Effect> effect_;
    // And answered for, or on its way; nothing at all before the first time.
    std::optional<std::optional<Effect>> toldEffect_;
    QList<ShellShortcut> shortcuts_;
    std::optional<ShellItem> item_;
    QTimer retry_; // while it serves another program
    Observers<> changes_;
};

} // namespace vantrel
