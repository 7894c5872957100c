#include "day.h"
#include "measurements.h"

#include "tray_desktop.h"

#include "testdesk/client_window.h"
#include "testdesk/displays.h"
#include "testdesk/private_bus.h"

#include <algorithm>
#include <optional>
#include <stdexcept>

#include <X11/keysym.h>

namespace vantrel::bench {
namespace {

constexpr desktop::PixelRect wholeScreen{0, 0, 1920, 1080};

class DayOnX final : public DayPlace {
public:
    explicit DayOnX(const Contender& contender)
        : systemBus_(desktop_.bench.server.folder() / "system-bus") {
        desktop_.environment["DBUS_SYSTEM_BUS_ADDRESS"] = systemBus_.address();
        program_ = rehearse(desktop_, contender, true);
        process_.emplace(startInTray(desktop_, program_));
        useDisplays(1);
        setMode("off");
    }

    [[nodiscard]] std::string name() const override { return "X"; }
    [[nodiscard]] std::string systemBus() const override { return systemBus_.address(); }

    void move(int step) override {
        const auto [x, y] = onCircle(step, 400);
        desktop_.bench.input.moveTo({static_cast<int>(960 + x), static_cast<int>(500 + y)},
                                    desktop::SyntheticInput::Wait::no);
    }
    void click(bool right) override {
        desktop_.bench.input.click(right ? desktop::Button::right : desktop::Button::left);
    }
    void cover(bool covered) override { showOver(other_, covered); }
    void lock(bool locked) override { showOver(locker_, locked); }
    void useDisplays(int count) override {
        const int width = 1920 / count;
        std::vector<desktop::PixelRect> monitors{{0, 0, width, 1080}};
        if (count == 2) {
            monitors.push_back({width, 0, width, 1080});
        }
        desktop::setMonitors(desktop_.bench.connection, monitors);
    }
    // By its shortcut.
    void setMode(const std::string& mode) override {
        const auto key = static_cast<unsigned char>((mode == "off" ? mode_ : mode).front());
        desktop_.bench.input.typeChord({XK_Control_L, XK_Alt_L, key});
        mode_ = mode;
    }
    void openPanel() override {
        desktop_.bench.input.moveTo(desktop::centerOf(program_.icon));
        desktop_.bench.input.click();
    }
    void closePanel() override {
        const desktop::WindowQuery panel{.program = program_.name,
                                         .type = "_NET_WM_WINDOW_TYPE_UTILITY"};
        const auto& connection = desktop_.bench.connection;
        const auto window = desktop::waitForWindow(connection, panel);
        if (!window || !typeIn(desktop_.bench.input, connection, *window, {XK_Escape}) ||
            !desktop::waitUntilGone(connection, panel)) {
            throw std::runtime_error("the panel does not open and close");
        }
        desktop_.bench.input.moveTo({400, 400});
    }

    [[nodiscard]] std::vector<Holding> holdings() override {
        const auto resources = desktop::serverResources(desktop_.bench.connection, process_->pid());
        return {{"memory", desktop::ownBytes(process_->pid()) / 1024, 512, " KiB"},
                {"pixmaps", resources.pixmaps},
                {"windows", resources.windows}};
    }
    [[nodiscard]] bool isBlank() const override {
        const auto picture = captureScreen(desktop_.bench.connection,
                                           {0, 0, wholeScreen.width, program_.icon.y - 10});
        return std::ranges::count(picture.pixels, desktop_.bench.background) ==
               std::ssize(picture.pixels);
    }
    [[nodiscard]] std::string errors() const override {
        return desktop::readFile(desktop_.bench.server.folder() / "contender.err");
    }

private:
    void showOver(std::optional<desktop::ClientWindow>& window, bool shown) const {
        window.reset();
        if (shown) {
            window.emplace(desktop_.bench.server.display(),
                           desktop::ClientWindowOptions{.area = wholeScreen, .color = 0});
        }
    }

    TrayDesktop desktop_;
    desktop::PrivateBus systemBus_;
    TrayProgram program_;
    std::optional<desktop::ChildProcess> process_;
    std::optional<desktop::ClientWindow> other_;
    std::optional<desktop::ClientWindow> locker_;
    std::string mode_ = "highlight";
};

} // namespace

Report measureDay(const Contenders& contenders, const Effort& effort) {
    if (!contenders.reacts) {
        return {};
    }
    DayOnX place(contenders.programAsApplication);
    return spendDay(place, effort);
}

} // namespace vantrel::bench
