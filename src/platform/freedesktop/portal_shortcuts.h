#pragma once

#include "platform/freedesktop/bus_structure.h"
#include "platform/freedesktop/key_grabber.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace vantrel {

// One as the portal has it: (sa{sv}).
struct PortalShortcut {
    QString id{};
    QVariantMap properties{};

    static auto members(auto& self) { return std::tie(self.id, self.properties); }
};

// Key combinations by the portal of global shortcuts, where the desktop has one. It takes them as
// proposals: which keys there are in the end is between the user and the desktop. A portal that
// leaves all keys to the desktop's configuration counts as none.
class PortalShortcuts final : public QObject, public KeyGrabber {
    Q_OBJECT

public:
    struct Means {
        // What the key produces without modifiers, as keymaps call it; empty where it produces
        // nothing.
        std::function<std::string(std::uint8_t keycode)> symbolOf;
        // For the one who is asked, in the user's language.
        std::function<QString(std::uint32_t number)> nameOf;
    };
    PortalShortcuts(QDBusConnection bus, Means means);

    // Not before the portal has answered.
    [[nodiscard]] bool takesKeys() const override { return isThere_; }
    [[nodiscard]] Subscription onKeysChange(std::function<void()> callback) override {
        return changes_.add(std::move(callback));
    }
    void grab(const std::vector<KeyGrab>& grabs) override;
    // The portal has no such thing, and asking it anew may ask the user.
    void leaveKeys(bool /*left*/) override {}
    [[nodiscard]] bool canLeaveKeys() const override { return false; }

private:
    Q_SLOT void respond(uint response, const QVariantMap& results, const QDBusMessage& message);
    Q_SLOT void activate(const QDBusObjectPath& session, const QString& shortcut,
                         qulonglong timestamp, const QVariantMap& options,
                         const QDBusMessage& message);
    Q_SLOT void lose(const QDBusMessage& message);

    void ask();
    void note(bool isThere);
    void close();
    void request(const char* method, const QVariantList& arguments, QVariantMap options);
    void bind();
    void judge(const QVariantMap& results);
    [[nodiscard]] QString token() const;
    [[nodiscard]] QString pathOf(const char* kind) const;

    QDBusConnection bus_;
    Means means_;
    Observers<> changes_;
    QString owner_; // of the portal's name
    bool isThere_ = false;
    std::vector<KeyGrab> grabs_;
    std::uint32_t session_ = 0; // one takes shortcuts once, so each grab has its own
    enum class Step : std::uint8_t { none, opening, binding, bound } step_ = Step::none;
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::PortalShortcut)
