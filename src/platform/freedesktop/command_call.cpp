#include "platform/freedesktop/command_call.h"

#include "platform/freedesktop/command_packets.h"
#include "platform/freedesktop/local_socket_address.h"

#include <algorithm>

#include <poll.h>

namespace vantrel {

namespace {

// Whether there is something to read, if only the end, before the deadline.
bool awaitInput(int socket, CommandCall::Deadline deadline) {
    using std::chrono::milliseconds;
    const auto left = std::chrono::ceil<milliseconds>(deadline - std::chrono::steady_clock::now());
    pollfd descriptor{socket, POLLIN, 0};
    return poll(&descriptor, 1, static_cast<int>(std::max(left, milliseconds(0)).count())) == 1;
}

} // namespace

CommandCall::Outcome<CommandCall> CommandCall::open(const std::string& address) {
    UniqueDescriptor socket(::socket(AF_UNIX, commandSocketKind, 0));
    const auto name = LocalSocketAddress::ofName(address);
    if (!socket || !name || connect(socket.get(), name->data(), name->size) != 0) {
        return Failure::gone;
    }
    if (!isOfSameUser(socket.get())) {
        return Failure::otherUser;
    }
    return CommandCall(std::move(socket));
}

CommandCall::Outcome<CommandAnswer> CommandCall::ask(const CommandRequest& request,
                                                     Deadline deadline) {
    if (!sendPacket(socket_.get(), encoded(request))) {
        return Failure::gone;
    }
    if (!awaitInput(socket_.get(), deadline)) {
        return Failure::unanswered;
    }
    if (const auto packet = receivePacket(socket_.get())) {
        return decodedAnswer(*packet);
    }
    return Failure::gone;
}

bool CommandCall::awaitEnd(Deadline deadline) {
    return awaitInput(socket_.get(), deadline);
}

} // namespace vantrel
