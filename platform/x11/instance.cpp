#include "platform/x11/instance.h"

#include "platform/x11/selection.h"

#include <poll.h>
#include <string_view>
#include <utility>

namespace vantrel::x11 {

namespace {

// A start is its arguments, each with a zero byte after it, and then this.
constexpr std::string_view endOfStart("\n\0", 2);

std::string encoded(const std::vector<std::string>& arguments) {
    std::string bytes;
    for (const auto& argument : arguments) {
        bytes.append(argument).push_back('\0');
    }
    return bytes.append(endOfStart);
}

std::vector<std::vector<std::string>> decoded(std::string_view bytes) {
    std::vector<std::vector<std::string>> starts(1);
    while (!bytes.empty()) {
        const auto end = bytes.find('\0');
        const auto word = bytes.substr(0, end);
        bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
        if (word == endOfStart.substr(0, 1)) {
            starts.emplace_back();
        } else {
            starts.back().emplace_back(word);
        }
    }
    starts.pop_back();
    return starts;
}

// Reads and deletes in one step.
std::string takeBytes(const Connection& connection, xcb_window_t window) {
    constexpr std::uint32_t maximumWords = 1 << 14;
    const auto cookie =
        xcb_get_property(connection.xcb(), 1, window, connection.atom(Atom::instanceArguments),
                         XCB_GET_PROPERTY_TYPE_ANY, 0, maximumWords);
    const Owned<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection.xcb(), cookie, nullptr));
    if (!reply || reply->format != 8) {
        return {};
    }
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

// Between these two no other program's request is carried out.
class ServerGrab {
public:
    explicit ServerGrab(xcb_connection_t* xcb) : xcb_(xcb) { xcb_grab_server(xcb_); }
    ~ServerGrab() {
        xcb_ungrab_server(xcb_);
        xcb_flush(xcb_);
    }
    ServerGrab(const ServerGrab&) = delete;
    ServerGrab& operator=(const ServerGrab&) = delete;

private:
    xcb_connection_t* xcb_;
};

// The next event within the time; null when there is none.
Owned<xcb_generic_event_t> nextEvent(xcb_connection_t* xcb,
                                     std::chrono::steady_clock::time_point deadline) {
    using std::chrono::milliseconds;
    while (true) {
        Owned<xcb_generic_event_t> event(xcb_poll_for_event(xcb));
        const auto left =
            std::chrono::ceil<milliseconds>(deadline - std::chrono::steady_clock::now());
        if (event || left <= milliseconds(0) || xcb_connection_has_error(xcb) != 0) {
            return event;
        }
        pollfd descriptor{xcb_get_file_descriptor(xcb), POLLIN, 0};
        poll(&descriptor, 1, static_cast<int>(left.count()));
    }
}

} // namespace

std::unique_ptr<Instance> Instance::claim(Connection& connection) {
    auto* xcb = connection.xcb();
    const auto selection = connection.atom(Atom::instance);
    WindowHandle window(xcb);
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(xcb, 0, window.id(), connection.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &events);
    const ServerGrab grab(xcb);
    if (selectionOwner(connection, selection) != XCB_NONE) {
        return nullptr;
    }
    xcb_set_selection_owner(xcb, window.id(), selection, XCB_CURRENT_TIME);
    return std::unique_ptr<Instance>(new Instance(connection, std::move(window)));
}

// The running instance deletes what it has read.
Instance::HandOver Instance::handOver(Connection& connection,
                                      const std::vector<std::string>& arguments,
                                      std::chrono::milliseconds patience) {
    auto* xcb = connection.xcb();
    const auto owner = selectionOwner(connection, connection.atom(Atom::instance));
    if (owner == XCB_NONE) {
        return HandOver::gone;
    }
    const auto property = connection.atom(Atom::instanceArguments);
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(xcb, owner, XCB_CW_EVENT_MASK, &events);
    const auto bytes = encoded(arguments);
    const Owned<xcb_generic_error_t> error(xcb_request_check(
        xcb, xcb_change_property_checked(xcb, XCB_PROP_MODE_APPEND, owner, property,
                                         connection.atom(Atom::utf8String), 8,
                                         static_cast<std::uint32_t>(bytes.size()), bytes.data())));
    if (error) {
        return HandOver::gone;
    }
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (const auto event = nextEvent(xcb, deadline)) {
        const auto number = eventNumber(*event);
        if (number == XCB_DESTROY_NOTIFY) {
            return HandOver::gone;
        }
        const auto& notify = reinterpret_cast<const xcb_property_notify_event_t&>(*event);
        if (number == XCB_PROPERTY_NOTIFY && notify.atom == property &&
            notify.state == XCB_PROPERTY_DELETE) {
            return HandOver::taken;
        }
    }
    return HandOver::unanswered;
}

Instance::Instance(Connection& connection, WindowHandle window)
    : connection_(connection), window_(std::move(window)), events_(connection.addHandler(*this)) {}

void Instance::setReopen(std::function<void(const std::vector<std::string>&)> reopen) {
    reopen_ = std::move(reopen);
    takeArguments();
}

void Instance::handleEvent(const xcb_generic_event_t& event) {
    if (eventNumber(event) == XCB_PROPERTY_NOTIFY) {
        const auto& notify = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        stale_ =
            stale_ || (notify.window == window_.id() && notify.state == XCB_PROPERTY_NEW_VALUE);
    }
}

void Instance::eventsDrained() {
    if (std::exchange(stale_, false)) {
        takeArguments();
    }
}

void Instance::takeArguments() {
    if (!reopen_) {
        return;
    }
    for (const auto& arguments : decoded(takeBytes(connection_, window_.id()))) {
        reopen_(arguments);
    }
}

} // namespace vantrel::x11
