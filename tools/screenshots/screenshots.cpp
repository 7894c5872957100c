#include "demo/interruption.h"
#include "gnome_shot.h"
#include "shots.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>

#include <QGuiApplication>

#include <unistd.h>

namespace vantrel::screenshots {
namespace {

void takeAll(const std::filesystem::path& program, const std::filesystem::path& folder) {
    if (access(program.c_str(), X_OK) != 0) {
        throw std::runtime_error("there is no program " + program.string());
    }
    std::filesystem::create_directories(folder);
    std::puts("Starting a private desktop");
    Desk desk(program, folder);
    for (const Shot& shot : shots()) {
        std::printf("  %s\n", shot.title);
        std::fflush(stdout);
        shot.take(desk);
    }
    std::puts("Starting GNOME Shell");
    takeGnomePicture(program, folder);
    std::printf("Pictures: %s\n", (folder / "*.png").c_str());
}

int run(const std::filesystem::path& program, const std::filesystem::path& folder) {
    try {
        demo::catchInterruptions();
        takeAll(program, folder);
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
    if (argc != 3) {
        std::fputs("usage: vantrel_screenshots <vantrel> <folder for the pictures>\n", stderr);
        return 2;
    }
    // It paints the stage, and has no windows of its toolkit.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    return vantrel::screenshots::run(argv[1], argv[2]);
}
