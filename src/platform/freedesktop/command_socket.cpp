#include "platform/freedesktop/command_socket.h"

#include "platform/freedesktop/command_packets.h"
#include "platform/freedesktop/local_socket_address.h"

#include <QSocketNotifier>

#include <memory>
#include <utility>

#include <poll.h>

namespace vantrel {

namespace {

constexpr int waitingCallers = 64;

// The system chooses a name that is free where none is wanted.
std::string listenAt(int socket, const std::string& wanted) {
    auto address = LocalSocketAddress::ofName(wanted).value_or(LocalSocketAddress());
    const auto size = wanted.empty() ? socklen_t{sizeof(sa_family_t)} : address.size;
    address.size = sizeof address.address;
    const bool listens = bind(socket, address.data(), size) == 0 &&
                         listen(socket, waitingCallers) == 0 &&
                         getsockname(socket, address.data(), &address.size) == 0;
    return listens ? std::string(address.name()) : std::string();
}

bool hasGone(int caller) {
    pollfd descriptor{caller, POLLRDHUP, 0};
    return poll(&descriptor, 1, 0) == 1;
}

} // namespace

CommandSocket::CommandSocket(const std::string& address)
    : listening_(socket(AF_UNIX, commandSocketKind, 0)) {
    if (listening_) {
        address_ = listenAt(listening_.get(), address);
    }
}

CommandSocket::~CommandSocket() = default;

void CommandSocket::setHandler(Handler handler) {
    handler_ = std::move(handler);
    callers_.reset();
    if (handler_ && !address_.empty()) {
        callers_ = std::make_unique<QSocketNotifier>(listening_.get(), QSocketNotifier::Read);
        connect(callers_.get(), &QSocketNotifier::activated, this, [this] { acceptCaller(); });
    }
}

void CommandSocket::acceptCaller() {
    UniqueDescriptor caller(
        accept4(listening_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (caller && isOfSameUser(caller.get())) {
        listenTo(std::move(caller));
    }
}

// Until the caller closes its end: one that asked the program to quit waits for this one to close.
// Nothing is done for one that did not wait for its answer, and has told its user so.
void CommandSocket::listenTo(UniqueDescriptor caller) {
    const auto socket = std::make_shared<UniqueDescriptor>(std::move(caller));
    auto* packets = new QSocketNotifier(socket->get(), QSocketNotifier::Read, this);
    connect(packets, &QSocketNotifier::activated, this, [this, socket, packets] {
        const auto packet = receivePacket(socket->get());
        if (!packet) {
            packets->setEnabled(false);
            packets->deleteLater();
        } else if (handler_ && !hasGone(socket->get())) {
            sendPacket(socket->get(), encoded(handler_(decodedRequest(*packet))));
        }
    });
}

} // namespace vantrel
