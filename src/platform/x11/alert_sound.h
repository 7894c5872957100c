#pragma once

#include "platform/shell.h"
#include "platform/x11/connection.h"

namespace vantrel::x11 {

// The bell of the keyboard, at the volume that it is set to; desktops play their alert sound for
// it.
class X11AlertSound final : public AlertSound {
public:
    explicit X11AlertSound(const Connection& connection) : connection_(connection) {}

    void beep() override;

private:
    const Connection& connection_;
};

} // namespace vantrel::x11
