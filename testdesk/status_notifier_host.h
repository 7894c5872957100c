#pragma once

#include "testdesk/private_bus.h"
#include "testdesk/x_connection.h"

#include <QByteArray>
#include <QDBusConnection>
#include <QSemaphore>
#include <QString>
#include <QThread>
#include <QVariant>

#include <optional>
#include <string>
#include <vector>

namespace vantrel::desktop {

class StatusNotifierWatcher;

struct StatusIcon {
    int width = 0;
    int height = 0;
    QByteArray pixels{}; // alpha, red, green, blue, row by row

    bool operator==(const StatusIcon&) const = default;
};

struct MenuEntry {
    int id = 0;
    std::string label{}; // empty for a separator; an underscore marks the letter that chooses it
    bool enabled = true;
    std::optional<bool> checked{}; // absent where it cannot be
    std::string shortcut{};        // its keys with "+" between them
    std::vector<MenuEntry> entries{};
};

// An item that a program has put into the tray. Each call waits for the program's answer, and gives
// nothing when there is none.
class StatusNotifierItem {
public:
    StatusNotifierItem(QDBusConnection bus, QString service)
        : bus_(std::move(bus)), service_(std::move(service)) {}

    [[nodiscard]] std::string title() const;
    [[nodiscard]] std::string toolTip() const; // its first line
    [[nodiscard]] std::vector<StatusIcon> icons() const;

    // As a click at that place does. Whether it answered.
    bool activate(PixelPoint place) const;

    [[nodiscard]] std::vector<MenuEntry> menu() const;
    // Chooses the first entry of that label, at any depth; false when there is none.
    bool choose(const std::string& label) const;

private:
    [[nodiscard]] QVariant property(const char* name) const;
    [[nodiscard]] bool call(const char* method, PixelPoint place) const;
    [[nodiscard]] QString menuPath() const;

    QDBusConnection bus_;
    QString service_;
};

// A panel that shows status notifier items, on a bus of its own, from the constructor until this is
// destroyed. It answers programs at all times, unless it hangs, in a thread of its own. There must
// be a QCoreApplication.
class StatusNotifierHost {
public:
    enum class Start {
        complete,
        withoutHost, // takes items and shows none yet
        hanging,     // is on the bus and answers nothing
    };
    // Throws when there is one already.
    explicit StatusNotifierHost(const PrivateBus& bus, Start start = Start::complete);
    ~StatusNotifierHost();
    StatusNotifierHost(const StatusNotifierHost&) = delete;
    StatusNotifierHost& operator=(const StatusNotifierHost&) = delete;

    // What is missing after a start that was not complete.
    void complete();
    // Until complete().
    void hang();

    // Of programs that are still there, oldest first.
    [[nodiscard]] std::vector<StatusNotifierItem> items() const;
    // The latest one; absent when there was none in time.
    [[nodiscard]] std::optional<StatusNotifierItem> waitForItem() const;
    // Whether an item or its menu has said so, such as "NewIcon".
    [[nodiscard]] bool hasHeard(const char* signal) const;

private:
    QString name_;
    QDBusConnection bus_;
    QThread thread_;
    QSemaphore answers_;
    bool hanging_ = false;
    StatusNotifierWatcher* watcher_; // destroyed in its thread at the end of that
};

} // namespace vantrel::desktop
