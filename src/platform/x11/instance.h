#pragma once

#include "platform/x11/connection.h"
#include "platform/x11/handles.h"

#include <memory>
#include <optional>
#include <string>

namespace vantrel::x11 {

// The one running instance of the program for each user and display: the owner of a selection. The
// server lets one program own it at a time, and takes it back from one that was killed. The owner's
// window says at what address the instance is spoken to.
class Instance {
public:
    // Null when another instance runs. The connection must outlive it.
    [[nodiscard]] static std::unique_ptr<Instance> claim(const Connection& connection,
                                                         const std::string& address);

    // The address of the running instance, which may be ending by now. Nothing when none runs.
    [[nodiscard]] static std::optional<std::string> find(const Connection& connection);

private:
    explicit Instance(WindowHandle window) : window_(std::move(window)) {}

    WindowHandle window_;
};

} // namespace vantrel::x11
