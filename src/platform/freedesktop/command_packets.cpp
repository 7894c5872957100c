#include "platform/freedesktop/command_packets.h"

#include <array>
#include <cstddef>

#include <unistd.h>

namespace vantrel {

namespace {

constexpr std::size_t largestPacket = 4096;

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

// Each word with a zero byte after it. No words are one zero byte, as a packet cannot be empty.
std::string encoded(const CommandWords& words) {
    std::string packet;
    for (const auto& word : words) {
        packet.append(word).push_back('\0');
    }
    return packet.empty() ? std::string(1, '\0') : packet;
}

CommandWords decodedWords(std::string_view packet) {
    CommandWords words;
    for (auto end = packet.find('\0'); end != std::string_view::npos; end = packet.find('\0')) {
        words.emplace_back(packet.substr(0, end));
        packet.remove_prefix(end + 1);
    }
    return words == CommandWords{""} ? CommandWords() : words;
}

std::string encoded(const CommandAnswer& answer) {
    return static_cast<char>(answer.status) + answer.text;
}

CommandAnswer decodedAnswer(const std::string& packet) {
    return {.status = static_cast<CommandAnswer::Status>(packet.front()), .text = packet.substr(1)};
}

} // namespace vantrel
