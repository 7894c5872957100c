#include "demo/interruption.h"
#include "gnome_shot.h"
#include "session_windows.h"
#include "shots.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string_view>

#include <QGuiApplication>

#include <unistd.h>

namespace vantrel::screenshots {
namespace {

void takeAll(const std::filesystem::path& program, const std::filesystem::path& folder) {
    std::puts("Starting a private desktop");
    Desk desk(program, folder);
    for (const Shot& shot : shots()) {
        std::printf("  %s\n", shot.title);
        std::fflush(stdout);
        shot.take(desk);
    }
    std::puts("Starting GNOME Shell");
    takeGnomePicture(program, folder);
}

using Take = void(const std::filesystem::path& program, const std::filesystem::path& folder);

// Null for no session that is known.
Take* takerOf(std::string_view session) {
    return session == "x11"     ? takeAll
           : session == "gnome" ? takeGnomeWindows
           : session == "kde"   ? takeKdeWindows
                                : nullptr;
}

int run(Take& take, const std::filesystem::path& program, const std::filesystem::path& folder) {
    try {
        demo::catchInterruptions();
        if (access(program.c_str(), X_OK) != 0) {
            throw std::runtime_error("there is no program " + program.string());
        }
        std::filesystem::create_directories(folder);
        take(program, folder);
        std::printf("Pictures: %s\n", (folder / "*.png").c_str());
        return EXIT_SUCCESS;
    } catch (const demo::Interrupted&) {
        std::fputs("The taking of pictures was interrupted.\n", stderr);
        return 130;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "The pictures failed: %s\n", error.what());
        return EXIT_FAILURE;
    }
}

} // namespace
} // namespace vantrel::screenshots

int main(int argc, char** argv) {
    auto* take = argc == 4 ? vantrel::screenshots::takerOf(argv[1]) : nullptr;
    if (take == nullptr) {
        std::fputs("usage: vantrel_screenshots x11|gnome|kde <vantrel> <folder for the pictures>\n",
                   stderr);
        return 2;
    }
    // It paints the stage, and has no windows of its toolkit.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    return vantrel::screenshots::run(*take, argv[2], argv[3]);
}
