#include "core_program.h"

#include <stdexcept>

namespace vantrel::bench {
namespace {

std::unique_ptr<x11::Connection> connectTo(const std::string& display) {
    x11::ConnectionError error;
    auto connection = x11::Connection::open(display, error);
    return connection ? std::move(connection) : throw std::runtime_error(error.english);
}

} // namespace

CoreProgram::CoreProgram(const BenchDesktop& desktop)
    : connection_(connectTo(desktop.server.display())),
      x11_(*connection_),
      defaults_(storedDocument(desktop).parent_path()),
      store_(defaults_, storedDocument(desktop).filename()),
      state_(store_, desktopOn(x11_, mainQueue_, rest_)) {
    state_.startUp();
}

void CoreProgram::roundTrip() const {
    auto* xcb = connection_->xcb();
    const x11::Owned<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
}

} // namespace vantrel::bench
