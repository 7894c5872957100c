#pragma once

#include "bench_desktop.h"

#include "app/state/app_state.h"
#include "platform/freedesktop/file_user_defaults.h"
#include "platform/freedesktop/qt_main_queue.h"
#include "platform/x11/desktop.h"
#include "testdesk/headless/x11_with_memory.h"

#include <filesystem>
#include <memory>

namespace vantrel::bench {

// The program without its entry and its session, in this process: its preferences are changed from
// here as a settings window would.
class CoreProgram {
public:
    // Shows the stored mode. The desktop must outlive it.
    explicit CoreProgram(const BenchDesktop& desktop);

    [[nodiscard]] AppState& state() { return state_; }
    // Returns when the server has answered.
    void roundTrip() const;

private:
    std::unique_ptr<x11::Connection> connection_;
    x11::X11Desktop x11_;
    FileUserDefaults defaults_;
    QtMainQueue mainQueue_;
    headless::Desktop rest_;
    SettingsStore store_;
    AppState state_;
};

} // namespace vantrel::bench
