#pragma once

#include <functional>

namespace vantrel {

// Has something to do while Qt's event loop waits, as far as it is GLib's: a turn of that costs as
// much as following a motion.
class LoopWait {
public:
    // An event dispatcher must exist, as it does once the application object does. The function is
    // called whenever that descriptor alone can be read, and returns whether it left nothing to the
    // loop, which then goes on waiting. It must not run an event loop of its own.
    LoopWait(int descriptor, std::function<bool()> handle);
    ~LoopWait();
    LoopWait(const LoopWait&) = delete;
    LoopWait& operator=(const LoopWait&) = delete;

    [[nodiscard]] int descriptor() const { return descriptor_; }
    [[nodiscard]] bool handle() const { return handle_(); }

private:
    int descriptor_;
    std::function<bool()> handle_;
};

} // namespace vantrel
