#include "interruption.h"
#include "recorder.h"
#include "scenes.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <span>
#include <stdexcept>
#include <string_view>

#include <QGuiApplication>

#include <unistd.h>

namespace vantrel::demo {
namespace {

struct Task {
    std::filesystem::path program;
    std::filesystem::path folder; // for video and pictures
    SessionKind session = SessionKind::x11;
    bool shortForm = false;
};

std::optional<Task> taskOf(std::span<char*> words) {
    if (words.size() < 3) {
        return std::nullopt;
    }
    Task task{.program = std::filesystem::absolute(words[1]), .folder = words[2]};
    words = words.subspan(3);
    while (!words.empty()) {
        if (std::string_view(words[0]) == "--short") {
            task.shortForm = true;
            words = words.subspan(1);
            continue;
        }
        const auto named = words.size() > 1 ? sessionNamed(words[1]) : std::nullopt;
        if (std::string_view(words[0]) != "--session" || !named) {
            return std::nullopt;
        }
        task.session = *named;
        words = words.subspan(2);
    }
    return task;
}

void play(const Task& task) {
    const auto& [program, folder, session, shortForm] = task;
    if (access(program.c_str(), X_OK) != 0) {
        throw std::runtime_error("there is no program " + program.string());
    }
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    std::puts("Starting a private desktop");
    std::fflush(stdout);
    Show show(session, program, folder);
    if (!show.session().tellsOfClicks) {
        std::puts("Without click effects, as nothing tells programs of clicks there");
    }
    if (!show.session().hasShortcuts) {
        std::puts("By commands, as programs can have no shortcuts there");
    }
    const auto allScenes = scenes(show.session());
    show.stage().setCaption(allScenes.front().caption);
    prepare(show);
    Recorder recorder(show.server(), folder / "vantrel.mp4");
    for (const Scene& scene : allScenes) {
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

int run(const Task& task) {
    try {
        catchInterruptions();
        play(task);
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
    const auto task = vantrel::demo::taskOf({argv, static_cast<std::size_t>(argc)});
    if (!task) {
        std::fputs("usage: vantrel_demo <vantrel> <folder for the pictures> [--short] "
                   "[--session x11|gnome|kde|sway]\n",
                   stderr);
        return 2;
    }
    // It paints the stage, and has no windows of its toolkit.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    return vantrel::demo::run(*task);
}
