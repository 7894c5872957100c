#include "interruption.h"
#include "recorder.h"
#include "scenes.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string_view>

#include <QGuiApplication>

#include <unistd.h>

namespace vantrel::demo {
namespace {

void play(const std::filesystem::path& program, const std::filesystem::path& folder,
          bool shortForm) {
    if (access(program.c_str(), X_OK) != 0) {
        throw std::runtime_error("there is no program " + program.string());
    }
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    std::puts("Starting a private desktop");
    Show show(program, folder);
    show.stage().setCaption(scenes().front().caption);
    prepare(show);
    Recorder recorder(show.server(), folder / "vantrel.mp4");
    for (const Scene& scene : scenes()) {
        if (scene.inShortForm || !shortForm) {
            std::printf("  %s\n", qUtf8Printable(scene.caption.title));
            std::fflush(stdout);
            show.stage().setCaption(scene.caption);
            scene.play(show);
        }
    }
    recorder.finish();
    std::printf("Video:    %s\nPictures: %s\n", (folder / "vantrel.mp4").c_str(),
                (folder / "*.png").c_str());
}

int run(const std::filesystem::path& program, const std::filesystem::path& folder, bool shortForm) {
    try {
        catchInterruptions();
        play(program, folder, shortForm);
        return EXIT_SUCCESS;
    } catch (const Interrupted&) {
        std::fputs("The demo was interrupted.\n", stderr);
        return 130;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "The demo failed: %s\n", error.what());
        return EXIT_FAILURE;
    }
}

} // namespace
} // namespace vantrel::demo

int main(int argc, char** argv) {
    const bool shortForm = argc == 4 && std::string_view(argv[3]) == "--short";
    if (argc != 3 && !shortForm) {
        std::fputs("usage: vantrel_demo <vantrel> <folder for the pictures> [--short]\n", stderr);
        return 2;
    }
    // It paints the stage, and has no windows of its toolkit.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    return vantrel::demo::run(argv[1], argv[2], shortForm);
}
