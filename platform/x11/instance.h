#pragma once

#include "platform/x11/connection.h"
#include "platform/x11/handles.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vantrel::x11 {

// The one running instance of the program for each user and display: the owner of a selection. The
// server lets one program own it at a time, and takes it back from one that was killed.
class Instance final : private EventHandler {
public:
    // Null when another instance runs.
    [[nodiscard]] static std::unique_ptr<Instance> claim(Connection& connection);

    enum class HandOver : std::uint8_t {
        taken,
        unanswered, // within the time
        gone,       // there is no other instance any more
    };
    // Tells the running instance that it was started again, with these arguments.
    [[nodiscard]] static HandOver handOver(Connection& connection,
                                           const std::vector<std::string>& arguments,
                                           std::chrono::milliseconds patience);

    // The program was started again, with these arguments. Starts that came before this is set are
    // reported then.
    void setReopen(std::function<void(const std::vector<std::string>&)> reopen);

private:
    Instance(Connection& connection, WindowHandle window);

    void handleEvent(const xcb_generic_event_t& event) override;
    void eventsDrained() override;
    void takeArguments();

    Connection& connection_;
    WindowHandle window_;
    bool stale_ = false;
    std::function<void(const std::vector<std::string>&)> reopen_;
    Subscription events_;
};

} // namespace vantrel::x11
