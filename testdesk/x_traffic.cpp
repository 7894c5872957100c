#include "testdesk/x_traffic.h"

#include "testdesk/x_connection.h"
#include "testdesk/x_stream.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <system_error>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/present.h>

namespace vantrel::desktop {
namespace {

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

sockaddr_un addressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    return address;
}

int openSocket() {
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0) {
        fail("cannot open a socket");
    }
    return descriptor;
}

// Without a server the socket stays unconnected, and whoever uses it learns that it is over.
int connectTo(const std::string& path) {
    const int descriptor = openSocket();
    const sockaddr_un address = addressOf(path);
    static_cast<void>(
        connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)));
    return descriptor;
}

std::string socketOf(int number) {
    return "/tmp/.X11-unix/X" + std::to_string(number);
}

int numberOf(const std::string& display) {
    return std::stoi(display.substr(display.find(':') + 1));
}

// Display names are numbers, so this takes one far above those that servers choose.
int listenAtFreeNumber(int& number) {
    const int descriptor = openSocket();
    for (number = 1000; number < 2000; ++number) {
        const sockaddr_un address = addressOf(socketOf(number));
        if (bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 &&
            listen(descriptor, 16) == 0) {
            return descriptor;
        }
    }
    fail("cannot listen");
}

constexpr std::size_t mostDescriptors = 16;

// The descriptors that came along with a piece of the stream.
union Ancillary {
    std::array<char, CMSG_SPACE(sizeof(int) * mostDescriptors)> bytes;
    cmsghdr alignment;
};

void closeDescriptors(msghdr& message) {
    for (cmsghdr* part = CMSG_FIRSTHDR(&message); part != nullptr;
         part = CMSG_NXTHDR(&message, part)) {
        const std::size_t count = (part->cmsg_len - CMSG_LEN(0)) / sizeof(int);
        std::array<int, mostDescriptors> descriptors{};
        std::memcpy(descriptors.data(), CMSG_DATA(part), count * sizeof(int));
        std::for_each_n(descriptors.begin(), count, close);
    }
}

bool sendAll(int to, msghdr message, std::size_t size) {
    ssize_t sent = sendmsg(to, &message, MSG_NOSIGNAL);
    auto* rest = static_cast<char*>(message.msg_iov->iov_base);
    while (sent > 0 && static_cast<std::size_t>(sent) < size) {
        rest += sent;
        size -= static_cast<std::size_t>(sent);
        sent = send(to, rest, size, MSG_NOSIGNAL);
    }
    return sent > 0;
}

// One direction of a connection.
struct Flow {
    int from;
    int to;
    XStream stream;

    // False when the connection is over.
    bool pass() {
        std::array<std::uint8_t, 65536> buffer{};
        Ancillary ancillary{};
        iovec data{.iov_base = buffer.data(), .iov_len = buffer.size()};
        msghdr message{};
        message.msg_iov = &data;
        message.msg_iovlen = 1;
        message.msg_control = ancillary.bytes.data();
        message.msg_controllen = ancillary.bytes.size();
        const ssize_t received = recvmsg(from, &message, MSG_CMSG_CLOEXEC);
        if (received <= 0) {
            return false;
        }
        const auto size = static_cast<std::size_t>(received);
        data.iov_len = size;
        // Counted first: whoever has seen an answer finds it in the counts.
        stream.feed(Message(buffer).first(size));
        const bool sent = sendAll(to, message, size);
        closeDescriptors(message);
        return sent;
    }
};

// One program's connection, both ways.
struct Relay {
    Flow requests;
    Flow answers;

    Relay(int client, int server, XStream::Handler onRequest, XStream::Handler onAnswer)
        : requests{client, server, XStream(XStream::Direction::toServer, std::move(onRequest))},
          answers{server, client, XStream(XStream::Direction::toClient, std::move(onAnswer))} {}
    ~Relay() {
        close(requests.from);
        close(answers.from);
    }
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;
};

} // namespace

std::uint64_t TrafficCounts::totalRequests() const {
    std::uint64_t total = 0;
    for (const auto& [kind, count] : requests) {
        total += count;
    }
    return total;
}

std::uint64_t TrafficCounts::count(RequestKind kind) const {
    const auto found = requests.find(kind);
    return found == requests.end() ? 0 : found->second;
}

TrafficCounts operator-(const TrafficCounts& now, const TrafficCounts& before) {
    TrafficCounts difference = now;
    for (const auto& [kind, count] : before.requests) {
        difference.requests[kind] -= count;
    }
    std::erase_if(difference.requests, [](const auto& entry) { return entry.second == 0; });
    for (const auto& [code, count] : before.errors) {
        difference.errors[code] -= count;
    }
    std::erase_if(difference.errors, [](const auto& entry) { return entry.second == 0; });
    difference.requestBytes -= before.requestBytes;
    difference.replies -= before.replies;
    difference.events -= before.events;
    difference.answerBytes -= before.answerBytes;
    difference.frames.erase(difference.frames.begin(),
                            difference.frames.begin() +
                                static_cast<std::ptrdiff_t>(before.frames.size()));
    return difference;
}

std::uint64_t missedFrames(const TrafficCounts& counts) {
    if (counts.frames.empty()) {
        return 0;
    }
    const auto [first, last] = std::ranges::minmax(counts.frames);
    return last - first + 1 - counts.frames.size();
}

XTraffic::XTraffic(const std::string& display)
    : server_(socketOf(numberOf(display))),
      presentMajor_(XConnection(display).majorOpcode("Present").value_or(0)),
      listening_(listenAtFreeNumber(number_)),
      stop_(eventfd(0, EFD_CLOEXEC)),
      thread_([this] { run(); }) {}

XTraffic::~XTraffic() {
    eventfd_write(stop_, 1);
    thread_.join();
    close(listening_);
    unlink(socketOf(number_).c_str());
    close(stop_);
}

std::string XTraffic::display() const {
    return std::string(":").append(std::to_string(number_));
}

TrafficCounts XTraffic::counts() const {
    const std::lock_guard lock(mutex_);
    return counts_;
}

void XTraffic::run() {
    std::vector<std::unique_ptr<Relay>> relays;
    while (true) {
        std::vector<pollfd> polled{{.fd = stop_, .events = POLLIN, .revents = 0},
                                   {.fd = listening_, .events = POLLIN, .revents = 0}};
        for (const auto& relay : relays) {
            polled.push_back({.fd = relay->requests.from, .events = POLLIN, .revents = 0});
            polled.push_back({.fd = relay->answers.from, .events = POLLIN, .revents = 0});
        }
        poll(polled.data(), polled.size(), -1);
        if (polled[0].revents != 0) {
            return;
        }
        for (std::size_t i = 0; i < relays.size(); ++i) {
            Relay& relay = *relays[i];
            const bool open = (polled[2 * i + 2].revents == 0 || relay.requests.pass()) &&
                              (polled[2 * i + 3].revents == 0 || relay.answers.pass());
            if (!open) {
                relays[i].reset();
            }
        }
        std::erase(relays, nullptr);
        if (polled[1].revents != 0) {
            const int client = accept4(listening_, nullptr, nullptr, SOCK_CLOEXEC);
            relays.push_back(std::make_unique<Relay>(
                client, connectTo(server_), [this](Message request) { countRequest(request); },
                [this](Message answer) { countAnswer(answer); }));
        }
    }
}

void XTraffic::countRequest(Message request) {
    const std::uint8_t minor = request[0] >= 128 ? request[1] : std::uint8_t{0};
    const std::lock_guard lock(mutex_);
    ++counts_.requests[{request[0], minor}];
    counts_.requestBytes += request.size();
}

void XTraffic::countAnswer(Message answer) {
    const std::lock_guard lock(mutex_);
    counts_.answerBytes += answer.size();
    if (answer[0] == 0) {
        ++counts_.errors[answer[1]];
    } else if (answer[0] == 1) {
        ++counts_.replies;
    } else {
        ++counts_.events;
        const bool complete = (answer[0] & 0x7F) == XCB_GE_GENERIC && answer[1] == presentMajor_ &&
                              read16(answer, 8) == XCB_PRESENT_COMPLETE_NOTIFY;
        if (complete && answer[10] == XCB_PRESENT_COMPLETE_KIND_NOTIFY_MSC) {
            counts_.frames.push_back(read64(answer, 32));
        }
    }
}

} // namespace vantrel::desktop
