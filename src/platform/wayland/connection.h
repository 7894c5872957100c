#pragma once

#include "platform/subscription.h"
#include "platform/wayland/handles.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct wl_event_queue;
struct wl_interface;
struct wl_proxy;

namespace vantrel::wayland {

// Something of which there may be any number, and which comes and goes.
struct Global {
    std::uint32_t name = 0;
    std::string interface {};
    std::uint32_t version = 0;
};

// Hears that all events that had arrived were handled: the time to act on them, once for all.
class BatchHandler {
public:
    virtual ~BatchHandler() = default;

    virtual void eventsDrained() = 0;
};

// A connection to the compositor, with what it offers.
class Connection {
public:
    // Null when there is no compositor, or it does not answer in that time. An empty name means
    // that of the environment.
    static std::unique_ptr<Connection> open(const std::string& displayName,
                                            std::chrono::milliseconds limit);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Whether it lets a client draw above all else, and place what it draws to the pixel.
    [[nodiscard]] bool hasLayerShell() const;
    // Whether it tells where the pointer is.
    [[nodiscard]] bool hasCursorSessions() const;

    [[nodiscard]] wl_compositor* compositor() const { return compositor_.get(); }
    [[nodiscard]] wl_subcompositor* subcompositor() const { return subcompositor_.get(); }
    [[nodiscard]] wl_shm* shm() const { return shm_.get(); }
    [[nodiscard]] wp_viewporter* viewporter() const { return viewporter_.get(); }
    [[nodiscard]] zwlr_layer_shell_v1* layerShell() const { return layerShell_.get(); }
    [[nodiscard]] zxdg_output_manager_v1* outputManager() const { return outputManager_.get(); }
    [[nodiscard]] ext_image_copy_capture_manager_v1* captures() const { return captures_.get(); }
    [[nodiscard]] ext_output_image_capture_source_manager_v1* captureSources() const {
        return captureSources_.get();
    }

    // Those that are there now.
    [[nodiscard]] const std::vector<Global>& globals() const { return globals_; }
    Observers<const Global&> appeared;
    Observers<const Global&> vanished;
    // At most that version.
    [[nodiscard]] void* bind(const Global& global, const wl_interface& interface,
                             std::uint32_t version) const;

    [[nodiscard]] Subscription addHandler(BatchHandler& handler);
    // Called once, when the compositor has gone away or has thrown this client out.
    Observers<> lost;
    [[nodiscard]] bool isLost() const { return isLost_; }
    // Whether the compositor closes it in that time, or has, whatever is still to be read.
    [[nodiscard]] bool seesEnd(std::chrono::milliseconds limit) const;

    [[nodiscard]] int descriptor() const;
    // Handles what has arrived, without waiting, and sends what that led to.
    void dispatch();
    // The same when nothing but frames and motions has arrived. False when something else is left
    // to dispatch().
    [[nodiscard]] bool dispatchFrames();
    // Makes the events of an object that nothing was heard of yet such frames or motions.
    template <typename Proxy>
    void tellFramesOf(Proxy* object) const {
        tellFramesOf(reinterpret_cast<wl_proxy*>(object));
    }
    // Whether something waits for dispatch() that was read already: the descriptor is silent about
    // it.
    [[nodiscard]] bool hasRead() const;
    void flush();
    // Handles what the compositor has to say to all that was sent. False when it does not answer in
    // that time.
    bool roundTrip(std::chrono::milliseconds limit);

private:
    explicit Connection(wl_display* display);

    void tellFramesOf(wl_proxy* object) const;
    void read();
    void finishBatch();
    void addGlobal(std::uint32_t name, const char* interface, std::uint32_t version);
    void removeGlobal(std::uint32_t name);
    void bindSingle(const Global& global);

    wl_display* display_;
    wl_event_queue* frames_; // and motions
    Handle<wl_registry> registry_;
    std::vector<Global> globals_;
    Handle<wl_compositor> compositor_;
    Handle<wl_subcompositor> subcompositor_;
    Handle<wl_shm> shm_;
    Handle<wp_viewporter> viewporter_;
    Handle<zwlr_layer_shell_v1> layerShell_;
    Handle<zxdg_output_manager_v1> outputManager_;
    Handle<ext_image_copy_capture_manager_v1> captures_;
    Handle<ext_output_image_capture_source_manager_v1> captureSources_;
    std::vector<BatchHandler*> handlers_;
    bool isLost_ = false;
};

} // namespace vantrel::wayland
