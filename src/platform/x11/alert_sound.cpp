#include "platform/x11/alert_sound.h"

namespace vantrel::x11 {

void X11AlertSound::beep() {
    constexpr std::int8_t asLoudAsItIsSet = 0;
    xcb_bell(connection_.xcb(), asLoudAsItIsSet);
    xcb_flush(connection_.xcb());
}

} // namespace vantrel::x11
