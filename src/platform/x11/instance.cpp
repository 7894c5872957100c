#include "platform/x11/instance.h"

#include "platform/x11/property.h"
#include "platform/x11/selection.h"

#include <utility>

namespace vantrel::x11 {

namespace {

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

WindowHandle makeWindow(const Connection& connection, const std::string& address) {
    auto* xcb = connection.xcb();
    WindowHandle window(xcb);
    xcb_create_window(xcb, 0, window.id(), connection.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, window.id(),
                        connection.atom(Atom::instanceAddress), connection.atom(Atom::utf8String),
                        8, static_cast<std::uint32_t>(address.size()), address.data());
    return window;
}

} // namespace

std::unique_ptr<Instance> Instance::claim(const Connection& connection,
                                          const std::string& address) {
    const auto selection = connection.atom(Atom::instance);
    auto window = makeWindow(connection, address);
    const ServerGrab grab(connection.xcb());
    if (selectionOwner(connection, selection) != XCB_NONE) {
        return nullptr;
    }
    xcb_set_selection_owner(connection.xcb(), window.id(), selection, XCB_CURRENT_TIME);
    return std::unique_ptr<Instance>(new Instance(std::move(window)));
}

std::optional<std::string> Instance::find(const Connection& connection) {
    const auto owner = selectionOwner(connection, connection.atom(Atom::instance));
    if (owner == XCB_NONE) {
        return std::nullopt;
    }
    return bytesOf(connection, owner, Atom::instanceAddress);
}

} // namespace vantrel::x11
