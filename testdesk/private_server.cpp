#include "testdesk/private_server.h"

#include "testdesk/displays.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace vantrel::desktop {
namespace {

using namespace std::chrono_literals;

// No devices of the machine, so that a real desktop next to it is left alone.
constexpr const char* outputsConfiguration = R"(
Section "ServerFlags"
    Option "AutoAddDevices" "false"
    Option "AutoEnableDevices" "false"
    Option "AutoAddGPU" "false"
    Option "DontVTSwitch" "true"
EndSection
Section "Device"
    Identifier "device"
    Driver "dummy"
    VideoRam 256000
EndSection
Section "Monitor"
    Identifier "monitor"
    HorizSync 1-2000
    VertRefresh 1-2000
EndSection
Section "Screen"
    Identifier "screen"
    Device "device"
    Monitor "monitor"
    DefaultDepth 24
    SubSection "Display"
        Depth 24
        Virtual 7680 4320
    EndSubSection
EndSection
)";

struct Pipe {
    int readEnd = -1;
    int writeEnd = -1;

    Pipe() {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) {
            throw std::system_error(errno, std::generic_category(), "cannot make a pipe");
        }
        readEnd = ends[0];
        writeEnd = ends[1];
    }
    ~Pipe() {
        close(readEnd);
        closeWriteEnd();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    void closeWriteEnd() {
        if (writeEnd >= 0) {
            close(std::exchange(writeEnd, -1));
        }
    }
};

// The line that the server writes once it takes connections.
std::string readNumber(Pipe& pipe) {
    pipe.closeWriteEnd();
    std::string number;
    pollfd readable{.fd = pipe.readEnd, .events = POLLIN, .revents = 0};
    for (char character = 0; poll(&readable, 1, 20'000) > 0;) {
        if (read(pipe.readEnd, &character, 1) != 1) {
            break;
        }
        if (character == '\n') {
            return number;
        }
        number += character;
    }
    return {};
}

ChildProcess startServer(std::vector<std::string> arguments, const std::filesystem::path& folder,
                         std::string& display) {
    Pipe pipe;
    arguments.insert(arguments.end(), {"-displayfd", std::to_string(pipe.writeEnd), "-ac",
                                       "-noreset", "-nolisten", "tcp"});
    Environment environment = minimalEnvironment();
    environment["HOME"] = folder;
    environment["DBUS_SYSTEM_BUS_ADDRESS"] = "disabled:";
    ChildProcess process({.arguments = arguments,
                          .environment = environment,
                          .output = folder / "server.out",
                          .errors = folder / "server.err",
                          .keepOpen = {pipe.writeEnd},
                          .signalOnParentDeath = SIGTERM});
    const std::string number = readNumber(pipe);
    if (number.empty()) {
        throw std::runtime_error(arguments.front() +
                                 " did not start: " + readFile(folder / "server.err"));
    }
    display = std::string(":").append(number);
    return process;
}

} // namespace

PrivateServer::PrivateServer(TemporaryFolder folder, std::vector<std::string> arguments)
    : folder_(std::move(folder)),
      process_(startServer(std::move(arguments), folder_.path(), display_)) {
    makeRuntimeFolder(folder_.path());
}

PrivateServer PrivateServer::virtualScreen(PixelSize size) {
    const std::string geometry =
        std::to_string(size.width) + "x" + std::to_string(size.height) + "x24";
    return {TemporaryFolder(), {"Xvfb", "-screen", "0", geometry}};
}

PrivateServer PrivateServer::virtualOutputs() {
    TemporaryFolder folder;
    const std::filesystem::path configuration = folder.path() / "xorg.conf";
    std::ofstream(configuration) << outputsConfiguration;
    // A seat of its own keeps the server away from the virtual terminals.
    std::vector<std::string> arguments{
        "/usr/lib/xorg/Xorg",         "-config", configuration, "-logfile",
        folder.path() / "server.log", "-seat",   "vantrel"};
    PrivateServer server(std::move(folder), std::move(arguments));
    setOutputs(XConnection(server.display()), {{.size = {1920, 1080}, .rate = 60}});
    return server;
}

Environment PrivateServer::environment() const {
    Environment environment = environmentIn(folder());
    environment["DISPLAY"] = display_;
    environment["QT_QPA_PLATFORM"] = "xcb";
    return environment;
}

} // namespace vantrel::desktop
