#include "testdesk/private_bus.h"

#include "testdesk/wait.h"

#include <fstream>
#include <stdexcept>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace vantrel::desktop {
namespace {

// The distribution's own configuration would start the services of the machine.
std::string configurationFor(const std::string& address) {
    return R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>)" +
           address + R"(</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";
}

ChildProcess startBus(const std::filesystem::path& socket, const std::string& address) {
    const auto beside = [&](const char* extension) {
        return std::filesystem::path(socket.string() + extension);
    };
    std::filesystem::remove(socket);
    std::ofstream(beside(".conf")) << configurationFor(address);
    ChildProcess process({.arguments = {"dbus-daemon", "--config-file=" + beside(".conf").string(),
                                        "--nofork", "--nopidfile", "--print-address"},
                          .environment = minimalEnvironment(),
                          .output = beside(".out"),
                          .errors = beside(".err")});
    // It tells its address once it listens.
    if (!waitFor([&] { return !process.running() || readFile(beside(".out")).ends_with('\n'); }) ||
        !process.running()) {
        throw std::runtime_error("dbus-daemon did not start: " + readFile(beside(".err")));
    }
    return process;
}

sockaddr_un nameOf(const std::string& address) {
    sockaddr_un name{.sun_family = AF_UNIX, .sun_path = {}};
    address.substr(address.find('/')).copy(name.sun_path, sizeof name.sun_path - 1);
    return name;
}

} // namespace

PrivateBus::PrivateBus(const std::filesystem::path& socket)
    : address_("unix:path=" + socket.string()), process_(startBus(socket, address_)) {}

QDBusMessage callOn(const QDBusConnection& bus, const QString& service, const QString& path,
                    const char* interface, const char* method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(service, path, QString::fromLatin1(interface),
                                                  QString::fromLatin1(method));
    message.setArguments(arguments);
    auto answer = bus.call(message);
    if (answer.type() == QDBusMessage::ErrorMessage) {
        throw std::runtime_error(answer.errorName().toStdString() + ": " +
                                 answer.errorMessage().toStdString());
    }
    return answer;
}

SilentBus::SilentBus(const std::filesystem::path& socket)
    : address_("unix:path=" + socket.string()),
      socket_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    std::filesystem::remove(socket);
    const auto name = nameOf(address_);
    if (bind(socket_, reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0 ||
        listen(socket_, 8) != 0) {
        throw std::runtime_error("cannot listen at " + socket.string());
    }
}

SilentBus::~SilentBus() {
    for (const int caller : callers_) {
        close(caller);
    }
    close(socket_);
}

void SilentBus::fillQueue() {
    const auto name = nameOf(address_);
    do {
        callers_.push_back(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    } while (connect(callers_.back(), reinterpret_cast<const sockaddr*>(&name), sizeof name) == 0);
}

} // namespace vantrel::desktop
