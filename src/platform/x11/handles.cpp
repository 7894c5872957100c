#include "platform/x11/handles.h"

#ifndef NDEBUG

#include <map>

namespace vantrel::x11 {

namespace {

using Key = std::pair<xcb_connection_t*, std::uint32_t>;

std::map<Key, SourceLine>& ledger() {
    static std::map<Key, SourceLine> entries;
    return entries;
}

std::string text(SourceLine at) {
    return std::string(at.file) + ":" + std::to_string(at.line);
}

} // namespace

void IdLedger::add(xcb_connection_t* connection, std::uint32_t id, SourceLine at) {
    ledger().insert_or_assign({connection, id}, at);
}

void IdLedger::remove(xcb_connection_t* connection, std::uint32_t id) {
    ledger().erase({connection, id});
}

std::string IdLedger::leftOver(xcb_connection_t* connection) {
    std::string lines;
    for (const auto& [key, at] : ledger()) {
        if (key.first == connection) {
            lines += "X id " + std::to_string(key.second) + " made at " + text(at) + "\n";
        }
    }
    return lines;
}

std::string IdLedger::placeOf(xcb_connection_t* connection, std::uint32_t id) {
    const auto entry = ledger().find({connection, id});
    return entry == ledger().end() ? std::string() : text(entry->second);
}

} // namespace vantrel::x11

#endif
