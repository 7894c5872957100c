#pragma once

#include "platform/subscription.h"
#include "platform/x11/atoms.h"

#include <QSize>

#include <array>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <xcb/xcb.h>

namespace vantrel::x11 {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

// A reply, event or error that the C library allocated.
template <typename T>
using Owned = std::unique_ptr<T, FreeDeleter>;

// What kind of event it is, whether the server or another program sent it.
inline constexpr std::uint8_t eventNumber(const xcb_generic_event_t& event) {
    return static_cast<std::uint8_t>(event.response_type & 0x7FU);
}

// Hears every event. Handlers look for what is theirs. They must not run an event loop of their
// own: nothing is delivered while one of them is busy, and they may have been called from within
// the wait of the loop.
class EventHandler {
public:
    virtual ~EventHandler() = default;

    virtual void handleEvent(const xcb_generic_event_t& event) = 0;
    // All events that had arrived were handled: the time to act on them, once for all.
    virtual void eventsDrained() {}
};

// Why there is no connection, in both languages of the interface.
struct ConnectionError {
    std::string english;
    std::string chinese;
};

// The connection to the X server, with what was asked about it at the start.
class Connection {
public:
    // Null with an error: no server, or one that lacks what the overlays need. An empty name means
    // the display of the environment.
    static std::unique_ptr<Connection> open(const std::string& displayName, ConnectionError& error);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    [[nodiscard]] xcb_connection_t* xcb() const { return connection_; }
    // Under which another connection to the server can be had.
    [[nodiscard]] const std::string& displayName() const { return displayName_; }
    [[nodiscard]] const xcb_screen_t& screen() const { return *screen_; }
    [[nodiscard]] xcb_window_t root() const { return screen_->root; }
    // As it is now; screen() only knows how it was at the start.
    [[nodiscard]] QSize rootSize() const { return rootSize_; }
    [[nodiscard]] int descriptor() const { return xcb_get_file_descriptor(connection_); }
    [[nodiscard]] xcb_atom_t atom(Atom name) const {
        return atoms_[static_cast<std::size_t>(name)];
    }
    // A visual with 8 bits of alpha, 0 when the server has none.
    [[nodiscard]] xcb_visualid_t argbVisual() const { return argbVisual_; }
    // Asked when somebody first wants to know.
    [[nodiscard]] bool isXwayland();
    // First event of an extension, 0 when the server lacks it; likewise for the major opcode.
    [[nodiscard]] std::uint8_t firstEvent(xcb_extension_t& extension) const;
    [[nodiscard]] std::uint8_t majorOpcode(xcb_extension_t& extension) const;

    [[nodiscard]] Subscription addHandler(EventHandler& handler);
    // Adds to what the root window reports, whoever else wants something of it.
    void selectRootEvents(std::uint32_t mask);
    // As xcb_configure_window(), and the server does not report it here: being woken by each of its
    // own moves would cost a follower of the pointer as much again as making them.
    void configureUnreported(xcb_window_t window, std::uint16_t mask, const std::uint32_t* values);

    // Handles what has arrived, in batches, and sends what that led to. When much arrives
    // meanwhile, some is left for the next time: a server that always has something to say must not
    // hold up the rest.
    void dispatch() { handle(Kinds::all); }
    // The same of frames and motions alone. False when something else is left to dispatch().
    [[nodiscard]] bool dispatchFrames();
    // Whether events wait in memory, where the descriptor does not tell of them.
    [[nodiscard]] bool hasQueuedEvents();

    // Goes up with each batch, and when the event loop is about to wait. What the server has said
    // in an earlier turn may have changed since.
    [[nodiscard]] std::uint64_t turn() const { return turn_; }
    void beginTurn() { ++turn_; }

    // Called once, when the server has gone away.
    Observers<> lost;
    [[nodiscard]] bool isLost() const { return xcb_connection_has_error(connection_) != 0; }

private:
    Connection(xcb_connection_t* connection, std::string displayName, int screenNumber);

    [[nodiscard]] std::optional<ConnectionError> prepare();
    std::string missingExtension();
    std::string outdatedExtension();
    void internAtoms();
    void findArgbVisual();
    enum class Kinds : std::uint8_t { all, framesAndMotions };
    void handle(Kinds kinds);
    bool deliverBatch(Kinds kinds);
    [[nodiscard]] bool isFrameOrMotion(const xcb_generic_event_t& event) const;
    void deliver(const xcb_generic_event_t& event);
    void uncheckedError(const xcb_generic_error_t& error) const;
    void noteRootSize(const xcb_generic_event_t& event);
    template <typename Call>
    void forEachHandler(Call call);

    xcb_connection_t* connection_;
    std::string displayName_;
    int screenNumber_;
    const xcb_screen_t* screen_ = nullptr;
    std::array<xcb_atom_t, static_cast<std::size_t>(Atom::count)> atoms_{};
    xcb_visualid_t argbVisual_ = 0;
    std::optional<bool> xwayland_;
    QSize rootSize_;
    std::uint32_t rootEvents_ = 0;
    std::uint64_t turn_ = 1;
    std::vector<EventHandler*> handlers_; // null where one has left
    Owned<xcb_generic_event_t> ahead_;    // taken from the queue, not handled yet
    bool dispatching_ = false;
    bool lostReported_ = false;
};

} // namespace vantrel::x11
