#pragma once

#include "testdesk/kwin_client.h"
#include "testdesk/native_window.h"
#include "testdesk/private_bus.h"
#include "testdesk/private_server.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QImage>
#include <QString>
#include <QVariant>

#include <nlohmann/json.hpp>

#include <memory>
#include <optional>
#include <string>

namespace vantrel::desktop {

// KWin as a Wayland session without a screen, with a bus, home and settings of its own, over a
// black desktop. It is up once this is constructed. There must be a QCoreApplication.
class KWinSession {
public:
    struct Options {
        double scale = 1;
        int outputs = 1;
        PixelSize size{1280, 720}; // of each, in points
        bool xwayland = false;
        bool locks = false; // has a lock screen
        // In which KWin finds effects, besides those of the system.
        std::filesystem::path dataFolder{};
    };
    // Throws when it does not come up.
    explicit KWinSession(const Options& options);
    ~KWinSession();
    KWinSession(const KWinSession&) = delete;
    KWinSession& operator=(const KWinSession&) = delete;

    [[nodiscard]] const std::filesystem::path& folder() const { return folder_.path(); }
    [[nodiscard]] const QDBusConnection& bus() const { return bus_; }
    [[nodiscard]] pid_t pid() const; // of KWin
    [[nodiscard]] const KWinClient& client() const { return *client_; }
    // For programs of the session.
    [[nodiscard]] Environment environment() const;
    // A native window with the keyboard. Returns once it covers the display.
    [[nodiscard]] NativeWindow startFullScreenWindow() const;
    // What KWin has written of faults in scripts.
    [[nodiscard]] std::string complaints() const;
    // Plasma's, such as 5.
    [[nodiscard]] int version() const { return version_; }

    // What it has of the program: its script, and the effect that hears of presses.
    [[nodiscard]] bool hasScript() const;
    [[nodiscard]] bool hearsPresses() const;
    [[nodiscard]] bool hasNothing() const { return !hasScript() && !hearsPresses(); }

    // The value of an expression in a script of KWin's.
    [[nodiscard]] nlohmann::json evaluate(const std::string& expression) const;
    // What all displays show, in their scale. KWin on an X server never shows the pointer.
    [[nodiscard]] QImage picture(bool withPointer = false) const;
    // What one of the displays shows, in its own scale.
    [[nodiscard]] QImage displayPicture(int output) const;
    // One pixel of that, without the pointer, where the scale is 1: sooner.
    [[nodiscard]] QRgb pixel(QPoint place) const;
    void click(int button) const;
    // With a lock screen. What they do is seen a little later.
    void lock() const;
    void unlock() const;
    // Kills KWin, which the session then starts anew.
    void restart();
    // KWin lives on, and can be asked nothing.
    void stopBus() { sessionBus_.stop(); }

    // Waits for the answer; throws what the other side objects.
    QDBusMessage call(const QString& service, const QString& path, const char* interface,
                      const char* method, const QVariantList& arguments = {}) const;

private:
    [[nodiscard]] bool isLoaded(const char* path, const char* interface, const char* method,
                                const char* name) const;
    [[nodiscard]] QImage capture(const char* method, const QVariantList& area,
                                 bool withPointer) const;
    void start();
    void awaitReady();

    Options options_;
    int version_;
    TemporaryFolder folder_;
    PrivateBus sessionBus_;
    // On which a KWin shows itself that takes no pictures of its own.
    std::optional<PrivateServer> screen_;
    Environment environment_;
    std::optional<ChildProcess> kwin_;
    std::optional<KWinClient> client_;
    QDBusConnection bus_;
    std::unique_ptr<QDBusVirtualObject> loginManager_;
};

} // namespace vantrel::desktop
