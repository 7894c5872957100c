#include "platform/x11/connection.h"

#include "platform/x11/handles.h"
#include "platform/x11/xwayland.h"

#include <algorithm>
#include <cassert>
#include <cstdio>
#include <string_view>
#include <unistd.h>

#include <xcb/composite.h>
#include <xcb/present.h>
#include <xcb/randr.h>
#include <xcb/shape.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>

namespace vantrel::x11 {

namespace {

const xcb_screen_t* screenAt(xcb_connection_t* connection, int number) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 0 && number > 0; --number) {
        xcb_screen_next(&screens);
    }
    return screens.rem > 0 ? screens.data : nullptr;
}

constexpr std::array<std::pair<xcb_extension_t*, const char*>, 4> neededExtensions{{
    {&xcb_randr_id, "RANDR"},
    {&xcb_input_id, "XInput"},
    {&xcb_shape_id, "SHAPE"},
    {&xcb_xfixes_id, "XFIXES"},
}};

// Depths of the root window for which opaque pictures can be made.
constexpr std::array<std::uint8_t, 4> usableDepths{16, 24, 30, 32};

bool isAtLeast(std::uint32_t major, std::uint32_t minor, std::uint32_t wantedMajor,
               std::uint32_t wantedMinor) {
    return major > wantedMajor || (major == wantedMajor && minor >= wantedMinor);
}

} // namespace

std::unique_ptr<Connection> Connection::open(const std::string& displayName,
                                             ConnectionError& error) {
    int screenNumber = 0;
    const char* environment = std::getenv("DISPLAY");
    const auto name =
        displayName.empty() && environment != nullptr ? std::string(environment) : displayName;
    auto* xcb = xcb_connect(name.empty() ? nullptr : name.c_str(), &screenNumber);
    std::unique_ptr<Connection> connection(new Connection(xcb, name, screenNumber));
    if (auto missing = connection->prepare()) {
        error = std::move(*missing);
        return nullptr;
    }
    return connection;
}

Connection::Connection(xcb_connection_t* connection, std::string displayName, int screenNumber)
    : connection_(connection), displayName_(std::move(displayName)), screenNumber_(screenNumber) {}

Connection::~Connection() {
    const auto leftOver = IdLedger::leftOver(connection_);
    std::fputs(leftOver.c_str(), stderr);
    assert(leftOver.empty());
    xcb_disconnect(connection_);
}

std::optional<ConnectionError> Connection::prepare() {
    if (xcb_connection_has_error(connection_) != 0) {
        return displayName_.empty()
                   ? ConnectionError{"cannot connect to an X server: DISPLAY is not set",
                                     "无法连接 X 服务器：未设置 DISPLAY"}
                   : ConnectionError{"cannot connect to the X server \"" + displayName_ + "\"",
                                     "无法连接 X 服务器 \"" + displayName_ + "\""};
    }
    screen_ = screenAt(connection_, screenNumber_);
    if (screen_ == nullptr) {
        return ConnectionError{"the X server has no such screen", "X 服务器没有该屏幕"};
    }
    if (std::ranges::find(usableDepths, screen_->root_depth) == usableDepths.end()) {
        const auto depth = std::to_string(screen_->root_depth);
        return ConnectionError{"the X server's screen has an unusual depth of " + depth + " bits",
                               "X 服务器的屏幕使用不支持的色深：" + depth + " 位"};
    }
    rootSize_ = QSize(screen_->width_in_pixels, screen_->height_in_pixels);
    selectRootEvents(XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    // What is asked about together is answered together.
    for (const auto& [extension, name] : neededExtensions) {
        xcb_prefetch_extension_data(connection_, extension);
    }
    for (auto* extension : {&xcb_present_id, &xcb_composite_id}) {
        xcb_prefetch_extension_data(connection_, extension);
    }
    internAtoms();
    findArgbVisual();
    auto missing = missingExtension();
    if (missing.empty()) {
        missing = outdatedExtension();
    }
    return missing.empty() ? std::nullopt
                           : std::optional(ConnectionError{"the X server lacks " + missing,
                                                           "X 服务器缺少 " + missing});
}

// A request of an extension that is not there would end the connection.
std::string Connection::missingExtension() {
    for (const auto& [extension, name] : neededExtensions) {
        if (majorOpcode(*extension) == 0) {
            return name;
        }
    }
    return {};
}

std::string Connection::outdatedExtension() {
    const auto randr = xcb_randr_query_version(connection_, 1, 5);
    const auto input = xcb_input_xi_query_version(connection_, 2, 2);
    const auto fixes = xcb_xfixes_query_version(connection_, 5, 0);
    const auto shape = xcb_shape_query_version(connection_);
    const Owned<xcb_randr_query_version_reply_t> randrVersion(
        xcb_randr_query_version_reply(connection_, randr, nullptr));
    const Owned<xcb_input_xi_query_version_reply_t> inputVersion(
        xcb_input_xi_query_version_reply(connection_, input, nullptr));
    const Owned<xcb_xfixes_query_version_reply_t> fixesVersion(
        xcb_xfixes_query_version_reply(connection_, fixes, nullptr));
    const Owned<xcb_shape_query_version_reply_t> shapeVersion(
        xcb_shape_query_version_reply(connection_, shape, nullptr));
    if (!randrVersion ||
        !isAtLeast(randrVersion->major_version, randrVersion->minor_version, 1, 5)) {
        return "RANDR 1.5";
    }
    if (!inputVersion ||
        !isAtLeast(inputVersion->major_version, inputVersion->minor_version, 2, 1)) {
        return "XInput 2.1";
    }
    if (!fixesVersion || !shapeVersion ||
        !isAtLeast(shapeVersion->major_version, shapeVersion->minor_version, 1, 1)) {
        return "SHAPE 1.1";
    }
    return {};
}

void Connection::internAtoms() {
    const std::string none;
    const auto screen = std::to_string(screenNumber_);
    const auto user = std::to_string(getuid());
    const std::array<std::string, static_cast<std::size_t>(Atom::count)> names{
#define VANTREL_ATOM_NAME(atom, name, number) std::string(name) + (number),
        VANTREL_ATOMS(VANTREL_ATOM_NAME)
#undef VANTREL_ATOM_NAME
    };
    std::array<xcb_intern_atom_cookie_t, names.size()> cookies{};
    std::ranges::transform(names, cookies.begin(), [this](const std::string& name) {
        return xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()),
                               name.c_str());
    });
    std::ranges::transform(cookies, atoms_.begin(), [this](xcb_intern_atom_cookie_t cookie) {
        const Owned<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(connection_, cookie, nullptr));
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    });
}

void Connection::findArgbVisual() {
    auto depths = xcb_screen_allowed_depths_iterator(screen_);
    for (; depths.rem > 0; xcb_depth_next(&depths)) {
        if (depths.data->depth != 32) {
            continue;
        }
        auto visuals = xcb_depth_visuals_iterator(depths.data);
        for (; visuals.rem > 0; xcb_visualtype_next(&visuals)) {
            const auto& visual = *visuals.data;
            if (visual._class == XCB_VISUAL_CLASS_TRUE_COLOR && visual.red_mask == 0xFF0000 &&
                visual.green_mask == 0xFF00 && visual.blue_mask == 0xFF) {
                argbVisual_ = visual.visual_id;
                return;
            }
        }
    }
}

std::uint8_t Connection::firstEvent(xcb_extension_t& extension) const {
    const auto* data = xcb_get_extension_data(connection_, &extension);
    return data != nullptr && data->present != 0 ? data->first_event : std::uint8_t{0};
}

std::uint8_t Connection::majorOpcode(xcb_extension_t& extension) const {
    const auto* data = xcb_get_extension_data(connection_, &extension);
    return data != nullptr && data->present != 0 ? data->major_opcode : std::uint8_t{0};
}

bool Connection::isXwayland() {
    if (!xwayland_) {
        xwayland_ = x11::isXwayland(connection_, root());
    }
    return *xwayland_;
}

Subscription Connection::addHandler(EventHandler& handler) {
    handlers_.push_back(&handler);
    return Subscription([this, &handler] {
        // The place stays until nobody walks along the list.
        std::ranges::replace(handlers_, &handler, nullptr);
        if (!dispatching_) {
            std::erase(handlers_, nullptr);
        }
    });
}

void Connection::selectRootEvents(std::uint32_t mask) {
    rootEvents_ |= mask;
    xcb_change_window_attributes(connection_, root(), XCB_CW_EVENT_MASK, &rootEvents_);
}

void Connection::configureUnreported(xcb_window_t window, std::uint16_t mask,
                                     const std::uint32_t* values) {
    const std::uint32_t others = rootEvents_ & ~std::uint32_t{XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY};
    xcb_change_window_attributes(connection_, root(), XCB_CW_EVENT_MASK, &others);
    xcb_configure_window(connection_, window, mask, values);
    xcb_change_window_attributes(connection_, root(), XCB_CW_EVENT_MASK, &rootEvents_);
}

template <typename Call>
void Connection::forEachHandler(Call call) {
    // By index: a handler may add another one.
    // NOLINTNEXTLINE(modernize-loop-convert)
    for (std::size_t i = 0; i < handlers_.size(); ++i) {
        if (auto* handler = handlers_[i]) {
            call(*handler);
        }
    }
}

void Connection::deliver(const xcb_generic_event_t& event) {
    if (event.response_type != 0) {
        noteRootSize(event);
        forEachHandler([&event](EventHandler& handler) { handler.handleEvent(event); });
    } else {
        uncheckedError(reinterpret_cast<const xcb_generic_error_t&>(event));
    }
}

// Whoever must know of a failure checks its request, and whoever asks about what may have vanished
// discards the error. So this one is a fault of the program, and ends it in debug builds.
void Connection::uncheckedError([[maybe_unused]] const xcb_generic_error_t& error) const {
#ifndef NDEBUG
    const auto place = IdLedger::placeOf(connection_, error.resource_id);
    std::fprintf(stderr, "X error %d of request %d.%d, for 0x%x%s%s\n", error.error_code,
                 error.major_code, error.minor_code, error.resource_id,
                 place.empty() ? "" : ", made at ", place.c_str());
    std::abort();
#endif
}

void Connection::noteRootSize(const xcb_generic_event_t& event) {
    if (eventNumber(event) == XCB_CONFIGURE_NOTIFY) {
        const auto& configure = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        if (configure.window == root()) {
            rootSize_ = QSize(configure.width, configure.height);
        }
    }
}

bool Connection::isFrameOrMotion(const xcb_generic_event_t& event) const {
    if (eventNumber(event) != XCB_GE_GENERIC) {
        return false;
    }
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    return generic.extension == majorOpcode(xcb_present_id)
               ? generic.event_type == XCB_PRESENT_COMPLETE_NOTIFY
               : generic.extension == majorOpcode(xcb_input_id) &&
                     generic.event_type == XCB_INPUT_RAW_MOTION;
}

bool Connection::deliverBatch(Kinds kinds) {
    bool any = false;
    if (!ahead_) {
        ahead_.reset(xcb_poll_for_event(connection_));
    }
    while (hasQueuedEvents() && (kinds == Kinds::all || isFrameOrMotion(*ahead_))) {
        any = true;
        deliver(*std::exchange(ahead_, nullptr));
    }
    return any;
}

bool Connection::dispatchFrames() {
    handle(Kinds::framesAndMotions);
    return !hasQueuedEvents() && !isLost();
}

void Connection::handle(Kinds kinds) {
    if (dispatching_) {
        return;
    }
    // Enough for what answers bring along; each turn of the event loop takes time of its own.
    constexpr int most = 8;
    dispatching_ = true;
    for (int batches = 0; batches < most; ++batches) {
        beginTurn();
        // What is left of a batch is acted on together with what was taken of it.
        if (!deliverBatch(kinds) || ahead_) {
            break;
        }
        forEachHandler([](EventHandler& handler) { handler.eventsDrained(); });
        if (!hasQueuedEvents()) {
            break;
        }
    }
    xcb_flush(connection_);
    dispatching_ = false;
    std::erase(handlers_, nullptr);
    if (kinds == Kinds::all && isLost() && !std::exchange(lostReported_, true)) {
        lost.notify();
    }
}

bool Connection::hasQueuedEvents() {
    if (!ahead_) {
        ahead_.reset(xcb_poll_for_queued_event(connection_));
    }
    return ahead_ != nullptr;
}

} // namespace vantrel::x11
