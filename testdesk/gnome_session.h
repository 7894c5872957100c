#pragma once

#include "testdesk/native_window.h"
#include "testdesk/private_bus.h"
#include "testdesk/private_server.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QImage>
#include <QPointF>
#include <QString>
#include <QVariant>

#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace vantrel::desktop {

// GNOME Shell as a Wayland session, without a screen or shown on an X server, with buses, home and
// settings of its own, over a black desktop. It is up, with no overview, once this is constructed.
// There must be a QCoreApplication.
class GnomeSession {
public:
    struct Options {
        std::vector<std::string> monitors{"1280x720"};
        int scale = 1; // of all of them, laid out in pixels where the shell does that
        // Of each of them, fractions too, and laid out in points; none for the one above.
        std::vector<double> scales{};
        // In which the shell finds extensions, besides those of the system.
        std::filesystem::path dataFolder{};
        // Of the X server that shows the first monitor and has the pointer and the keyboard, for
        // none other can be had then. Up to GNOME 48.
        std::string screen{};
    };
    // Throws when it does not come up.
    explicit GnomeSession(const Options& options);
    ~GnomeSession();
    GnomeSession(const GnomeSession&) = delete;
    GnomeSession& operator=(const GnomeSession&) = delete;

    [[nodiscard]] const std::filesystem::path& folder() const { return folder_.path(); }
    [[nodiscard]] const QDBusConnection& bus() const { return bus_; }
    [[nodiscard]] PrivateBus& sessionBus() { return sessionBus_; }
    [[nodiscard]] pid_t pid() const { return shell_.pid(); } // of the shell
    // For programs of the session. Starts its Xwayland for the first one.
    [[nodiscard]] Environment environment() const;
    // A native window with the keyboard. Returns once it covers the display.
    [[nodiscard]] NativeWindow startFullScreenWindow() const;
    // What the shell has written of faults in its scripts.
    [[nodiscard]] std::string complaints() const;
    // The major version.
    [[nodiscard]] int version() const;

    // The value of a script in the shell. Throws when it fails.
    nlohmann::json evaluate(const std::string& script) const;
    // What all displays show, in the largest scale of any, with or without the pointer.
    [[nodiscard]] QImage picture(bool withPointer = false) const;
    // Begins a screen cast of the only display, without the pointer, for which there must be a
    // PipeWire. The number of its stream.
    [[nodiscard]] std::uint32_t castScreen() const;
    // On the first displays, side by side in these scales. All others are off.
    void showOn(const std::vector<double>& scales) const;
    // On or off. Whether the shell knows it.
    bool switchExtension(const QString& extension, bool on) const;

    [[nodiscard]] QPointF pointer() const;
    // In points of the desktop, as the shell counts them.
    void moveTo(double x, double y) const;
    // Without waiting.
    void moveBy(double x, double y) const;
    void press(int button, bool down) const; // a code of Linux, as BTN_LEFT
    void click(int button) const;
    void type(int key, bool down) const; // a code of Linux, as KEY_A

    // Waits for the answer; throws what the other side objects.
    QDBusMessage call(const char* service, const QString& path, const char* interface,
                      const char* method, const QVariantList& arguments = {}) const;

private:
    void startInput();
    void inputCall(const char* method, const QVariantList& arguments = {}) const;

    TemporaryFolder folder_;
    PrivateBus systemBus_;
    PrivateBus sessionBus_;
    Environment environment_;
    ChildProcess shell_;
    QDBusConnection bus_;
    QString inputSession_;
};

} // namespace vantrel::desktop
