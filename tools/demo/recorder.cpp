#include "recorder.h"

#include "interruption.h"
#include "pictures.h"

#include <csignal>
#include <stdexcept>
#include <utility>

namespace vantrel::demo {
namespace {

using namespace std::chrono_literals;

std::vector<std::string> filmCommand(const desktop::PrivateServer& server,
                                     const std::filesystem::path& video) {
    const std::string size =
        std::to_string(stageSize.width()) + "x" + std::to_string(stageSize.height());
    // On a busy machine frames are missed; the others then last longer, and the film as long as the
    // presentation.
    return {"ffmpeg", "-hide_banner", "-nostdin", "-y",
            // What is filmed
            "-use_wallclock_as_timestamps", "1", "-f", "x11grab", "-framerate", "60", "-video_size",
            size, "-i", server.display(),
            // What becomes of it
            "-fps_mode", "cfr", "-r", "60", "-c:v", "libx264", "-preset", "veryfast", "-crf", "18",
            "-pix_fmt", "yuv420p", "-movflags", "+faststart", video};
}

desktop::ChildProcess startFilming(const desktop::PrivateServer& server,
                                   const std::filesystem::path& video,
                                   const std::filesystem::path& log) {
    return desktop::ChildProcess({.arguments = filmCommand(server, video),
                                  .environment = server.environment(),
                                  .errors = log});
}

} // namespace

Recorder::Recorder(const desktop::PrivateServer& server, std::filesystem::path video)
    : video_(std::move(video)),
      log_(server.folder() / "ffmpeg.err"),
      process_(startFilming(server, video_, log_)) {
    expect("the camera", [&] {
        if (!process_.running()) {
            throw std::runtime_error("ffmpeg did not start: " + desktop::readFile(log_));
        }
        return desktop::readFile(log_).find("frame=") != std::string::npos;
    });
}

void Recorder::finish() {
    process_.signal(SIGINT);
    if (!process_.wait(60s)) {
        throw std::runtime_error("ffmpeg did not finish the video");
    }
    std::error_code unreadable;
    if (std::filesystem::file_size(video_, unreadable) == 0 || unreadable) {
        throw std::runtime_error("there is no video: " + desktop::readFile(log_));
    }
}

} // namespace vantrel::demo
