#include "testdesk/native_window.h"

#include "testdesk/wait.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace vantrel::desktop {
namespace {

Command commandFor(Environment environment, const std::filesystem::path& folder) {
    const auto script = folder / "window.js";
    std::ofstream(script) << R"(
        imports.gi.versions.Gtk = '4.0';
        const {Gtk, GLib} = imports.gi;
        Gtk.init();
        const window = new Gtk.Window();
        const clicks = new Gtk.GestureClick({button: 0});
        clicks.connect('pressed', () => print('press'));
        clicks.connect('released', () => print('release'));
        window.add_controller(clicks);
        const motions = new Gtk.EventControllerMotion();
        motions.connect('enter', () => print('enter'));
        window.add_controller(motions);
        const keys = new Gtk.EventControllerKey();
        keys.connect('key-pressed', (_keys, _symbol, keycode) => print(`key-${keycode - 8}`));
        window.add_controller(keys);
        window.fullscreen();
        window.present();
        new GLib.MainLoop(null, false).run();
    )";
    environment["GDK_BACKEND"] = "wayland";
    environment["GSK_RENDERER"] = "cairo";
    return {.arguments = {"gjs", script},
            .environment = environment,
            .output = folder / "window.out",
            .errors = folder / "window.err"};
}

} // namespace

NativeWindow::NativeWindow(Environment environment, const std::filesystem::path& folder,
                           const std::function<bool()>& isShown)
    : log_(folder / "window.out"), process_(commandFor(std::move(environment), folder)) {
    if (!waitFor([&] { return !process_.running() || isShown(); }) || !process_.running()) {
        throw std::runtime_error("no window: " + readFile(folder / "window.err"));
    }
}

std::ptrdiff_t NativeWindow::count(const std::string& what) const {
    std::ifstream log(log_);
    return std::count(std::istream_iterator<std::string>(log), {}, what);
}

} // namespace vantrel::desktop
