#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include <xcb/xcb.h>

namespace vantrel::x11 {

// Where a handle is made: its caller's line.
struct SourceLine {
    const char* file = "";
    int line = 0;

    static constexpr SourceLine here(const char* file = __builtin_FILE(),
                                     int line = __builtin_LINE()) {
        return {file, line};
    }
};

// In debug builds, where each X id that is alive was made; elsewhere nothing.
class IdLedger {
public:
#ifdef NDEBUG
    static void add(xcb_connection_t*, std::uint32_t, SourceLine) {}
    static void remove(xcb_connection_t*, std::uint32_t) {}
    static std::string leftOver(xcb_connection_t*) {
        return {};
    }
    static std::string placeOf(xcb_connection_t*, std::uint32_t) {
        return {};
    }
#else
    static void add(xcb_connection_t* connection, std::uint32_t id, SourceLine at);
    static void remove(xcb_connection_t* connection, std::uint32_t id);
    // A line for each id of the connection that is still alive.
    static std::string leftOver(xcb_connection_t* connection);
    // File and line; empty when there is no such id, or no more.
    static std::string placeOf(xcb_connection_t* connection, std::uint32_t id);
#endif
};

// Owns one id of the server, which it frees with the given request. The connection must outlive it.
template <auto Free>
class Handle {
public:
    Handle() = default;
    explicit Handle(xcb_connection_t* connection, SourceLine at = SourceLine::here())
        : connection_(connection), id_(xcb_generate_id(connection)) {
        IdLedger::add(connection_, id_, at);
    }
    Handle(Handle&& other) noexcept
        : connection_(std::exchange(other.connection_, nullptr)),
          id_(std::exchange(other.id_, 0)) {}
    Handle& operator=(Handle&& other) noexcept {
        if (this != &other) {
            reset();
            connection_ = std::exchange(other.connection_, nullptr);
            id_ = std::exchange(other.id_, 0);
        }
        return *this;
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { reset(); }

    [[nodiscard]] std::uint32_t id() const { return id_; }
    explicit operator bool() const { return connection_ != nullptr; }

    void reset() {
        if (connection_ != nullptr) {
            IdLedger::remove(connection_, id_);
            Free(connection_, id_);
            connection_ = nullptr;
            id_ = 0;
        }
    }

private:
    xcb_connection_t* connection_ = nullptr;
    std::uint32_t id_ = 0;
};

// Each is given an id by its constructor, and its object by whoever makes the request that creates
// it.
using WindowHandle = Handle<&xcb_destroy_window>;
using PixmapHandle = Handle<&xcb_free_pixmap>;
using GcHandle = Handle<&xcb_free_gc>;
using ColormapHandle = Handle<&xcb_free_colormap>;

} // namespace vantrel::x11
