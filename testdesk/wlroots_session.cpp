#include "testdesk/wlroots_session.h"

#include "testdesk/wait.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

#include <wayland-client.h>
#include <wayland-virtual-pointer.h>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

// What programs need to know is written down once its Xwayland takes connections of every user.
std::vector<std::string> commandOf(Compositor compositor, const std::filesystem::path& folder) {
    const auto start =
        "xhost + && echo $DISPLAY $WAYLAND_DISPLAY ready >" + (folder / "names").string();
    const auto file = folder / "configuration";
    if (compositor == Compositor::sway) {
        std::ofstream(file) << "xwayland force\ndefault_border none\n"
                            << "default_floating_border none\nexec " << start << "\n";
        return asOrdinaryUser({"sway", "--config", file});
    }
    std::ofstream(file) << "<labwc_config><core><xwaylandPersistence>yes</xwaylandPersistence>"
                           "</core></labwc_config>\n";
    return asOrdinaryUser({"labwc", "--config", file, "--startup", "sh -c '" + start + "'"});
}

std::string nameOf(int output) {
    return "HEADLESS-" + std::to_string(output);
}

} // namespace

// A mouse of the session.
class WlrootsSession::Mouse {
public:
    explicit Mouse(const std::string& socket) : display_(wl_display_connect(socket.c_str())) {
        if (display_ == nullptr) {
            throw std::runtime_error("no connection to the compositor");
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
        move({-far, -far});
        move(place);
        finish();
    }
    void moveBy(QPoint way) {
        move(way);
        zwlr_virtual_pointer_v1_frame(pointer_);
        wl_display_flush(display_);
    }
    void click(std::uint32_t button) {
        for (const auto state :
             {WL_POINTER_BUTTON_STATE_PRESSED, WL_POINTER_BUTTON_STATE_RELEASED}) {
            zwlr_virtual_pointer_v1_button(pointer_, ++time_, button, state);
            finish();
        }
    }

private:
    void move(QPoint way) {
        zwlr_virtual_pointer_v1_motion(pointer_, ++time_, wl_fixed_from_int(way.x()),
                                       wl_fixed_from_int(way.y()));
    }
    void finish() {
        zwlr_virtual_pointer_v1_frame(pointer_);
        wl_display_roundtrip(display_);
    }

    wl_display* display_;
    zwlr_virtual_pointer_manager_v1* manager_ = nullptr;
    zwlr_virtual_pointer_v1* pointer_ = nullptr;
    std::uint32_t time_ = 0; // in milliseconds, which only have to go up
};

WlrootsSession::WlrootsSession(Compositor compositor, const std::vector<HeadlessOutput>& outputs)
    : process_(start(compositor, std::max<std::size_t>(outputs.size(), 1))) {
    if (outputs.empty()) {
        return;
    }
    std::vector<std::string> words{"wlr-randr"};
    for (int number = 0; const auto& output : outputs) {
        const auto pair = [](int one, char between, int other) {
            return std::to_string(one) + between + std::to_string(other);
        };
        words.insert(words.end(),
                     {"--output", nameOf(++number), "--custom-mode",
                      pair(output.pixels.width(), 'x', output.pixels.height()) + "@60Hz", "--pos",
                      pair(output.place.x(), ',', output.place.y()), "--scale",
                      std::to_string(output.scale)});
    }
    run(words);
}

WlrootsSession::~WlrootsSession() = default;

ChildProcess WlrootsSession::start(Compositor compositor, std::size_t outputs) {
    makeRuntimeFolder(folder());
    auto environment = environmentIn(folder());
    environment["WLR_BACKENDS"] = "headless";
    environment["WLR_HEADLESS_OUTPUTS"] = std::to_string(outputs);
    environment["WLR_LIBINPUT_NO_DEVICES"] = "1";
    environment["WLR_RENDERER"] = "pixman";
    ChildProcess process({.arguments = commandOf(compositor, folder()),
                          .environment = environment,
                          .output = folder() / "compositor.out",
                          .errors = folder() / "compositor.err"});
    const bool isUp = waitFor(
        [&] {
            std::istringstream names(readFile(folder() / "names"));
            std::string ready;
            return !process.running() || (names >> display_ >> socket_ >> ready);
        },
        20s);
    if (!isUp || !process.running()) {
        throw std::runtime_error(nameOf(compositor) +
                                 " did not start: " + readFile(folder() / "compositor.err"));
    }
    return process;
}

std::string WlrootsSession::socket() const {
    return folder() / "runtime" / socket_;
}

Environment WlrootsSession::environment() const {
    auto environment = environmentIn(folder());
    environment["DISPLAY"] = display_;
    environment["WAYLAND_DISPLAY"] = socket_;
    environment["DBUS_SESSION_BUS_ADDRESS"] = bus_.address();
    return environment;
}

void WlrootsSession::run(std::vector<std::string> arguments) const {
    const auto name = arguments.front();
    const auto status = ChildProcess({.arguments = std::move(arguments),
                                      .environment = environment(),
                                      .errors = folder() / (name + ".err")})
                            .wait(10s);
    if (status != ExitStatus{.code = 0}) {
        throw std::runtime_error(name + ": " + readFile(folder() / (name + ".err")));
    }
}

QImage WlrootsSession::picture(int output) const {
    const auto file = folder() / "picture.png";
    run({"grim", "-o", nameOf(output), file});
    return QImage(QString::fromStdString(file)).convertToFormat(QImage::Format_RGB32);
}

void WlrootsSession::recordWithPointer(int output) const {
    run({"grim", "-c", "-o", nameOf(output), folder() / "record.png"});
}

void WlrootsSession::setOutput(int output, std::vector<std::string> words) const {
    words.insert(words.begin(), {"wlr-randr", "--output", nameOf(output)});
    run(std::move(words));
}

void WlrootsSession::moveTo(QPoint place) {
    if (!mouse_) {
        mouse_ = std::make_unique<Mouse>(socket());
    }
    mouse_->moveTo(place);
}

void WlrootsSession::moveBy(QPoint way) {
    mouse_->moveBy(way);
}

void WlrootsSession::click(std::uint32_t button) {
    mouse_->click(button);
}

} // namespace vantrel::desktop
