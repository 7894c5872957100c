#include "platform/freedesktop/command_packets.h"

#include <array>
#include <cstddef>

#include <unistd.h>

namespace vantrel {

namespace {

constexpr std::size_t largestPacket = 4096;
constexpr char tokenMark = '\1';

} // namespace

bool isOfSameUser(int socket) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == geteuid();
}

std::optional<std::string> receivePacket(int socket) {
    std::array<char, largestPacket> packet{};
    const auto size = recv(socket, packet.data(), packet.size(), MSG_TRUNC);
    return size > 0 && static_cast<std::size_t>(size) <= packet.size()
               ? std::optional(std::string(packet.data(), static_cast<std::size_t>(size)))
               : std::nullopt;
}

bool sendPacket(int socket, std::string_view packet) {
    return send(socket, packet.data(), packet.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(packet.size());
}

// Each word with a zero byte after it, and before them a token, if there is one, that a byte marks
// with which no word begins. Nothing at all is one zero byte, as a packet cannot be empty.
std::string encoded(const CommandRequest& request) {
    std::string packet;
    if (!request.activationToken.empty()) {
        packet.append(1, tokenMark).append(request.activationToken).push_back('\0');
    }
    for (const auto& word : request.words) {
        packet.append(word).push_back('\0');
    }
    return packet.empty() ? std::string(1, '\0') : packet;
}

CommandRequest decodedRequest(std::string_view packet) {
    CommandRequest request;
    for (auto end = packet.find('\0'); end != std::string_view::npos; end = packet.find('\0')) {
        if (packet.starts_with(tokenMark)) {
            request.activationToken = packet.substr(1, end - 1);
        } else {
            request.words.emplace_back(packet.substr(0, end));
        }
        packet.remove_prefix(end + 1);
    }
    if (request.words == CommandWords{""}) {
        request.words.clear();
    }
    return request;
}

std::string encoded(const CommandAnswer& answer) {
    return static_cast<char>(answer.status) + answer.text;
}

CommandAnswer decodedAnswer(const std::string& packet) {
    return {.status = static_cast<CommandAnswer::Status>(packet.front()), .text = packet.substr(1)};
}

} // namespace vantrel
