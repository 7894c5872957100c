#include "platform/freedesktop/bus_probe.h"

#include "platform/freedesktop/local_socket_address.h"
#include "platform/freedesktop/unique_descriptor.h"

#include <QByteArray>
#include <QSocketNotifier>

#include <cerrno>
#include <memory>
#include <optional>
#include <string_view>

#include <poll.h>
#include <sys/socket.h>

namespace vantrel {

namespace {

// The first address of the list that is tried. Nothing when it is no local socket.
std::optional<LocalSocketAddress> busSocket(const char* variable, const QByteArray& usual) {
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
            const auto place = QByteArray::fromPercentEncoding(entry.mid(equals + 1)).toStdString();
            return key == "path" ? LocalSocketAddress::ofPath(place)
                                 : LocalSocketAddress::ofName(place);
        }
    }
    return std::nullopt;
}

struct Asked {
    UniqueDescriptor socket; // none when the question could not be put
    bool queued = false;     // when too many wait to be let in already
};

// Asks which ways of authentication there are, to which a bus replies before it knows anybody.
Asked ask(const LocalSocketAddress& bus) {
    constexpr std::string_view question("\0AUTH\r\n", 7);
    UniqueDescriptor descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (connect(descriptor.get(), bus.data(), bus.size) != 0) {
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
        char byte = 0;
        const auto count = recv(descriptor->get(), &byte, sizeof byte, 0);
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
