#include "platform/wayland/connection.h"

#include "platform/wayland/listener.h"

#include <algorithm>
#include <utility>

#include <poll.h>
#include <wayland-client.h>
#include <wayland-image-copy-capture.h>
#include <wayland-layer-shell.h>
#include <wayland-viewporter.h>
#include <wayland-xdg-output.h>

namespace vantrel::wayland {

namespace {

using Clock = std::chrono::steady_clock;

bool becomesReadable(int descriptor, std::chrono::milliseconds limit) {
    pollfd poller{descriptor, POLLIN, 0};
    return poll(&poller, 1, static_cast<int>(limit.count())) > 0;
}

} // namespace

std::unique_ptr<Connection> Connection::open(const std::string& displayName,
                                             std::chrono::milliseconds limit) {
    auto* display = wl_display_connect(displayName.empty() ? nullptr : displayName.c_str());
    if (display == nullptr) {
        return nullptr;
    }
    std::unique_ptr<Connection> connection(new Connection(display));
    return connection->roundTrip(limit) ? std::move(connection) : nullptr;
}

Connection::Connection(wl_display* display)
    : display_(display),
      frames_(wl_display_create_queue(display)),
      registry_(wl_display_get_registry(display)) {
    static constexpr wl_registry_listener listener{
        .global = relay<&Connection::addGlobal, wl_registry>,
        .global_remove = relay<&Connection::removeGlobal, wl_registry>,
    };
    wl_registry_add_listener(registry_.get(), &listener, this);
}

Connection::~Connection() {
    captureSources_.reset();
    captures_.reset();
    outputManager_.reset();
    layerShell_.reset();
    viewporter_.reset();
    shm_.reset();
    subcompositor_.reset();
    compositor_.reset();
    registry_.reset();
    wl_event_queue_destroy(frames_);
    wl_display_disconnect(display_);
}

bool Connection::hasLayerShell() const {
    return compositor_ && subcompositor_ && shm_ && viewporter_ && layerShell_ && outputManager_;
}

bool Connection::hasCursorSessions() const {
    return captures_ && captureSources_;
}

void* Connection::bind(const Global& global, const wl_interface& interface,
                       std::uint32_t version) const {
    return wl_registry_bind(registry_.get(), global.name, &interface,
                            std::min(global.version, version));
}

Subscription Connection::addHandler(BatchHandler& handler) {
    handlers_.push_back(&handler);
    return Subscription([this, &handler] { std::erase(handlers_, &handler); });
}

int Connection::descriptor() const {
    return wl_display_get_fd(display_);
}

bool Connection::seesEnd(std::chrono::milliseconds limit) const {
    pollfd poller{descriptor(), 0, 0}; // of which the end is told all the same
    return poll(&poller, 1, static_cast<int>(limit.count())) == 1;
}

void Connection::dispatch() {
    read();
    if (wl_display_get_error(display_) == 0) {
        finishBatch();
    } else if (!std::exchange(isLost_, true)) {
        lost.notify();
    }
}

void Connection::read() {
    while (wl_display_prepare_read(display_) != 0) {
        if (wl_display_dispatch_pending(display_) < 0) {
            return;
        }
    }
    wl_display_read_events(display_); // which does not wait
    wl_display_dispatch_pending(display_);
    wl_display_dispatch_queue_pending(display_, frames_);
}

bool Connection::dispatchFrames() {
    // Fails while there are events of other kinds.
    if (wl_display_prepare_read(display_) != 0) {
        return false;
    }
    // Which does not wait.
    if (wl_display_read_events(display_) < 0 ||
        wl_display_dispatch_queue_pending(display_, frames_) < 0) {
        return false;
    }
    finishBatch();
    return !hasRead();
}

bool Connection::hasRead() const {
    if (wl_display_prepare_read(display_) != 0) {
        return true;
    }
    wl_display_cancel_read(display_);
    return false;
}

void Connection::finishBatch() {
    for (auto* handler : handlers_) {
        handler->eventsDrained();
    }
    flush();
}

void Connection::tellFramesOf(wl_proxy* object) const {
    wl_proxy_set_queue(object, frames_);
}

void Connection::flush() {
    wl_display_flush(display_);
}

bool Connection::roundTrip(std::chrono::milliseconds limit) {
    const auto deadline = Clock::now() + limit;
    bool answered = false;
    const Handle<wl_callback> answer(wl_display_sync(display_));
    static constexpr wl_callback_listener listener{
        .done = [](void* data, wl_callback*, std::uint32_t) { *static_cast<bool*>(data) = true; },
    };
    wl_callback_add_listener(answer.get(), &listener, &answered);
    flush();
    while (!answered && wl_display_get_error(display_) == 0) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0 || !becomesReadable(descriptor(), left)) {
            return false;
        }
        dispatch();
    }
    return answered;
}

void Connection::addGlobal(std::uint32_t name, const char* interface, std::uint32_t version) {
    globals_.push_back({name, interface, version});
    const auto global = globals_.back();
    bindSingle(global);
    appeared.notify(global);
}

void Connection::bindSingle(const Global& global) {
    const auto take = [&](auto& handle, const wl_interface& interface, std::uint32_t version) {
        if (!handle && global.interface == interface.name) {
            using Proxy = typename std::remove_reference_t<decltype(handle)>::pointer;
            handle.reset(static_cast<Proxy>(bind(global, interface, version)));
        }
    };
    take(compositor_, wl_compositor_interface, 4);
    take(subcompositor_, wl_subcompositor_interface, 1);
    take(shm_, wl_shm_interface, 1);
    take(viewporter_, wp_viewporter_interface, 1);
    take(layerShell_, zwlr_layer_shell_v1_interface, 3);
    take(outputManager_, zxdg_output_manager_v1_interface, 3);
    take(captures_, ext_image_copy_capture_manager_v1_interface, 1);
    take(captureSources_, ext_output_image_capture_source_manager_v1_interface, 1);
}

void Connection::removeGlobal(std::uint32_t name) {
    const auto found = std::ranges::find(globals_, name, &Global::name);
    if (found != globals_.end()) {
        const auto global = std::move(*found);
        globals_.erase(found);
        vanished.notify(global);
    }
}

} // namespace vantrel::wayland
