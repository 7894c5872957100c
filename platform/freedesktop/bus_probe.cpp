#include "platform/freedesktop/bus_probe.h"

#include "platform/freedesktop/unique_descriptor.h"

#include <QByteArray>
#include <QSocketNotifier>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace vantrel {

namespace {

struct SocketAddress {
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    socklen_t length = sizeof(sockaddr_un);
};

// Of a path, or of a name that is in no folder.
std::optional<SocketAddress> toSocketAddress(const QByteArray& place, bool isPath) {
    SocketAddress socket;
    const auto prefix = isPath ? std::size_t{0} : std::size_t{1};
    const auto size = static_cast<std::size_t>(place.size());
    if (size + 1 > sizeof socket.address.sun_path) {
        return std::nullopt;
    }
    std::memcpy(socket.address.sun_path + prefix, place.data(), size);
    if (!isPath) {
        socket.length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + prefix + size);
    }
    return socket;
}

// The first address of the list that is tried. Nothing when it is no local socket.
std::optional<SocketAddress> busSocket(const char* variable, const QByteArray& usual) {
    auto list = qgetenv(variable);
    if (list.isEmpty()) {
        list = usual;
    }
    const auto address = list.split(';').front();
    if (!address.startsWith("unix:")) {
        return std::nullopt;
    }
    for (const auto& entry : address.mid(5).split(',')) {
        const auto equals = entry.indexOf('=');
        const auto key = entry.left(equals);
        if (key == "path" || key == "abstract") {
            return toSocketAddress(QByteArray::fromPercentEncoding(entry.mid(equals + 1)),
                                   key == "path");
        }
    }
    return std::nullopt;
}

struct Asked {
    UniqueDescriptor socket; // none when the question could not be put
    bool queued = false;     // when too many wait to be let in already
};

// Asks which ways of authentication there are, to which a bus replies before it knows anybody.
Asked ask(const SocketAddress& bus) {
    constexpr std::string_view question("\0AUTH\r\n", 7);
    UniqueDescriptor descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (connect(descriptor.get(), reinterpret_cast<const sockaddr*>(&bus.address), bus.length) !=
        0) {
        return {.queued = errno == EAGAIN};
    }
    const bool asked = send(descriptor.get(), question.data(), question.size(), MSG_NOSIGNAL) ==
                       static_cast<ssize_t>(question.size());
    return {.socket = asked ? std::move(descriptor) : UniqueDescriptor()};
}

} // namespace

void askSystemBus(QObject* context, const std::function<void(bool answers)>& answer) {
    const auto bus =
        busSocket("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/var/run/dbus/system_bus_socket");
    if (!bus) {
        answer(true);
        return;
    }
    const auto descriptor = std::make_shared<UniqueDescriptor>(ask(*bus).socket);
    if (!*descriptor) {
        answer(false);
        return;
    }
    auto* reply = new QSocketNotifier(descriptor->get(), QSocketNotifier::Read, context);
    QObject::connect(reply, &QSocketNotifier::activated, context, [reply, descriptor, answer] {
        char word = 0;
        const auto count = recv(descriptor->get(), &word, sizeof word, 0);
        reply->setEnabled(false);
        reply->deleteLater();
        answer(count > 0);
    });
}

bool sessionBusIsSilent(std::chrono::milliseconds limit) {
    const auto bus =
        busSocket("DBUS_SESSION_BUS_ADDRESS",
                  "unix:path=" + qgetenv("XDG_RUNTIME_DIR").toPercentEncoding("/") + "/bus");
    const auto asked = bus ? ask(*bus) : Asked();
    pollfd answer{asked.socket.get(), POLLIN, 0};
    return asked.queued || (asked.socket && poll(&answer, 1, static_cast<int>(limit.count())) == 0);
}

} // namespace vantrel
