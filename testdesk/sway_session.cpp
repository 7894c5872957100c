#include "testdesk/sway_session.h"

#include "testdesk/wait.h"
#include "testdesk/wayland_session.h"

#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <wayland-client.h>
#include <wayland-virtual-pointer.h>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

// What else programs need to know is written down once its Xwayland takes connections of every
// user.
std::filesystem::path writeConfiguration(const std::filesystem::path& folder,
                                         const std::vector<SwayOutput>& outputs) {
    std::ofstream file(folder / "sway.config");
    file << "xwayland force\ndefault_border none\ndefault_floating_border none\n";
    int number = 0;
    for (const auto& output : outputs) {
        file << "output HEADLESS-" << ++number << " mode --custom " << output.pixels.width() << "x"
             << output.pixels.height() << "@60Hz position " << output.place.x() << " "
             << output.place.y() << " scale " << output.scale << "\n";
    }
    file << "exec xhost + && echo $DISPLAY $WAYLAND_DISPLAY $SWAYSOCK ready >" << folder / "names"
         << "\n";
    return folder / "sway.config";
}

} // namespace

// A mouse of the session.
class SwaySession::Mouse {
public:
    explicit Mouse(const std::string& socket) : display_(wl_display_connect(socket.c_str())) {
        if (display_ == nullptr) {
            throw std::runtime_error("no connection to sway");
        }
        static constexpr wl_registry_listener listener{
            .global =
                [](void* self, wl_registry* registry, std::uint32_t name, const char* interface,
                   std::uint32_t /*version*/) {
                    const auto& wanted = zwlr_virtual_pointer_manager_v1_interface;
                    if (std::strcmp(interface, wanted.name) == 0) {
                        static_cast<Mouse*>(self)->manager_ =
                            static_cast<zwlr_virtual_pointer_manager_v1*>(
                                wl_registry_bind(registry, name, &wanted, 1));
                    }
                },
            .global_remove = [](void*, wl_registry*, std::uint32_t) {},
        };
        auto* registry = wl_display_get_registry(display_);
        wl_registry_add_listener(registry, &listener, this);
        wl_display_roundtrip(display_);
        wl_registry_destroy(registry);
        pointer_ = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(manager_, nullptr);
        wl_display_roundtrip(display_);
    }
    ~Mouse() {
        zwlr_virtual_pointer_v1_destroy(pointer_);
        zwlr_virtual_pointer_manager_v1_destroy(manager_);
        wl_display_disconnect(display_);
    }
    Mouse(const Mouse&) = delete;
    Mouse& operator=(const Mouse&) = delete;

    // By way of the corner, as the place in which it is now is not known.
    void moveTo(QPoint place) {
        constexpr int far = 10000;
        zwlr_virtual_pointer_v1_motion(pointer_, ++time_, wl_fixed_from_int(-far),
                                       wl_fixed_from_int(-far));
        zwlr_virtual_pointer_v1_motion(pointer_, ++time_, wl_fixed_from_int(place.x()),
                                       wl_fixed_from_int(place.y()));
        finish();
    }
    void click(std::uint32_t button) {
        for (const auto state :
             {WL_POINTER_BUTTON_STATE_PRESSED, WL_POINTER_BUTTON_STATE_RELEASED}) {
            zwlr_virtual_pointer_v1_button(pointer_, ++time_, button, state);
            finish();
        }
    }

private:
    void finish() {
        zwlr_virtual_pointer_v1_frame(pointer_);
        wl_display_roundtrip(display_);
    }

    wl_display* display_;
    zwlr_virtual_pointer_manager_v1* manager_ = nullptr;
    zwlr_virtual_pointer_v1* pointer_ = nullptr;
    std::uint32_t time_ = 0; // in milliseconds, which only have to go up
};

SwaySession::SwaySession(const std::vector<SwayOutput>& outputs) : compositor_(start(outputs)) {}

SwaySession::~SwaySession() = default;

bool SwaySession::followsPointers() {
    const TemporaryFolder folder;
    ChildProcess({.arguments = {"sway", "--version"},
                  .environment = minimalEnvironment(),
                  .output = folder / "version"})
        .wait(10s);
    int major = 0;
    int minor = 0;
    const auto version = readFile(folder / "version");
    // NOLINTNEXTLINE(cert-err34-c): a version that is none counts as an old one.
    std::sscanf(version.c_str(), "sway version %d.%d", &major, &minor);
    return major > 1 || minor >= 11;
}

ChildProcess SwaySession::start(const std::vector<SwayOutput>& outputs) {
    makeRuntimeFolder(folder());
    auto environment = environmentIn(folder());
    environment["WLR_BACKENDS"] = "headless";
    environment["WLR_HEADLESS_OUTPUTS"] = std::to_string(outputs.size());
    environment["WLR_LIBINPUT_NO_DEVICES"] = "1";
    environment["WLR_RENDERER"] = "pixman";
    ChildProcess process({.arguments = swayCommand(writeConfiguration(folder(), outputs)),
                          .environment = environment,
                          .output = folder() / "sway.out",
                          .errors = folder() / "sway.err"});
    const bool isUp = waitFor(
        [&] {
            std::istringstream names(readFile(folder() / "names"));
            std::string ready;
            return !process.running() || (names >> display_ >> socket_ >> control_ >> ready);
        },
        20s);
    if (!isUp || !process.running()) {
        throw std::runtime_error("sway did not start: " + readFile(folder() / "sway.err"));
    }
    return process;
}

std::string SwaySession::socket() const {
    return folder() / "runtime" / socket_;
}

Environment SwaySession::environment() const {
    auto environment = environmentIn(folder());
    environment["DISPLAY"] = display_;
    environment["WAYLAND_DISPLAY"] = socket_;
    environment["SWAYSOCK"] = control_;
    return environment;
}

void SwaySession::run(std::vector<std::string> arguments) const {
    const auto name = arguments.front();
    const auto status = ChildProcess({.arguments = std::move(arguments),
                                      .environment = environment(),
                                      .errors = folder() / (name + ".err")})
                            .wait(10s);
    if (status != ExitStatus{.code = 0}) {
        throw std::runtime_error(name + ": " + readFile(folder() / (name + ".err")));
    }
}

QImage SwaySession::picture(int output) const {
    const auto file = folder() / "picture.png";
    run({"grim", "-o", "HEADLESS-" + std::to_string(output), file});
    return QImage(QString::fromStdString(file)).convertToFormat(QImage::Format_RGB32);
}

void SwaySession::recordWithPointer(int output) const {
    run({"grim", "-c", "-o", "HEADLESS-" + std::to_string(output), folder() / "record.png"});
}

void SwaySession::command(const std::string& words) const {
    run({"swaymsg", words});
}

void SwaySession::moveTo(QPoint place) {
    if (!mouse_) {
        mouse_ = std::make_unique<Mouse>(socket());
    }
    mouse_->moveTo(place);
}

void SwaySession::click(std::uint32_t button) {
    mouse_->click(button);
}

} // namespace vantrel::desktop
