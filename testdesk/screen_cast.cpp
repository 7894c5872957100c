#include "testdesk/screen_cast.h"

#include "testdesk/wait.h"

#include <QStandardPaths>

#include <chrono>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace vantrel::desktop {
namespace {

Command commandFor(std::vector<std::string> arguments, const Environment& environment,
                   const std::filesystem::path& folder) {
    const auto log = folder / arguments.front();
    return {.arguments = std::move(arguments),
            .environment = environment,
            .output = log.string() + ".out",
            .errors = log.string() + ".err"};
}

// Without those of its parts that look for devices. Version 0.5 has another way to say so.
std::vector<std::string> managerWithoutDevices() {
    const bool isOld = std::filesystem::exists("/usr/share/wireplumber/policy.conf");
    return isOld ? std::vector<std::string>{"wireplumber", "--config-file", "policy.conf"}
                 : std::vector<std::string>{"wireplumber", "--profile", "policy"};
}

std::vector<std::string> receiverOf(std::uint32_t stream, const std::filesystem::path& file) {
    return {"gst-launch-1.0",
            "pipewiresrc",
            "path=" + std::to_string(stream),
            "!",
            "videoconvert",
            "!",
            "video/x-raw,format=BGRx",
            "!",
            "filesink",
            "buffer-mode=unbuffered",
            "location=" + file.string()};
}

} // namespace

bool PipeWire::isInstalled() {
    const auto isThere = [](const char* program) {
        return !QStandardPaths::findExecutable(QString::fromLatin1(program)).isEmpty();
    };
    if (!isThere("pipewire") || !isThere("wireplumber") || !isThere("gst-inspect-1.0")) {
        return false;
    }
    ChildProcess inspection(
        {.arguments = {"gst-inspect-1.0", "pipewiresrc"}, .environment = minimalEnvironment()});
    return inspection.wait(std::chrono::seconds(30)) == ExitStatus{.code = 0};
}

PipeWire::PipeWire(const Environment& environment, const std::filesystem::path& folder)
    : server_(commandFor({"pipewire"}, environment, folder)),
      manager_(commandFor(managerWithoutDevices(), environment, folder)) {
    const auto socket = std::filesystem::path(environment.at("XDG_RUNTIME_DIR")) / "pipewire-0";
    if (!waitFor([&] { return std::filesystem::exists(socket); })) {
        throw std::runtime_error("pipewire did not start: " + readFile(folder / "pipewire.err"));
    }
}

ScreenCast::ScreenCast(const Environment& environment, const std::filesystem::path& folder,
                       std::uint32_t stream, QSize size)
    : file_(folder / "cast"),
      size_(size),
      receiver_(commandFor(receiverOf(stream, file_), environment, folder)) {}

QImage ScreenCast::picture() const {
    QImage picture(size_, QImage::Format_RGB32);
    const auto size = static_cast<std::uintmax_t>(picture.sizeInBytes());
    std::error_code missing;
    const auto written = std::filesystem::file_size(file_, missing);
    if (missing || written < size) {
        return {};
    }
    std::ifstream file(file_, std::ios::binary);
    file.seekg(static_cast<std::streamoff>((written / size - 1) * size));
    file.read(reinterpret_cast<char*>(picture.bits()), picture.sizeInBytes());
    return picture;
}

} // namespace vantrel::desktop
