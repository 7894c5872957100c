#include "app/entry/command_language.h"
#include "app/entry/start.h"
#include "platform/freedesktop/installed_bundle.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

namespace vantrel {
namespace {

constexpr std::string_view englishUsage =
    "Usage: vantrel [--settings]\n"
    "       vantrel COMMAND [--settings]\n"
    "\n"
    "Makes the mouse pointer easy to follow, on every display. Without a command, Vantrel starts;\n"
    "when it is running already, its windows come to the front, or the settings open.\n"
    "\n"
    "  --settings         open the settings window; beside every command but quit\n"
    "  --help             show this text and exit\n"
    "  --version          show the version and exit\n"
    "\n"
    "Commands for the running Vantrel:\n"
    "  off                show nothing\n"
    "  highlight          show the highlight; this and the next four start Vantrel if needed\n"
    "  laser              show the laser\n"
    "  toggle highlight   show the highlight, or nothing if it is shown\n"
    "  toggle laser       show the laser, or nothing if it is shown\n"
    "  settings           open the settings window\n"
    "  status [--json]    print the mode: off, highlight or laser; or that and more, as JSON\n"
    "  quit               quit Vantrel\n"
    "\n"
    "Exit status: 0 done, 1 failed, 2 not understood, 3 Vantrel is not running on this display.";

constexpr std::string_view chineseUsage =
    "用法：vantrel [--settings]\n"
    "      vantrel 命令 [--settings]\n"
    "\n"
    "让鼠标指针在每个显示器上都清晰易见。不带命令时启动 Vantrel；\n"
    "如果已在运行，则将其窗口移到最前，或打开设置。\n"
    "\n"
    "  --settings         打开设置窗口；可与 quit 以外的命令一起使用\n"
    "  --help             显示此帮助并退出\n"
    "  --version          显示版本并退出\n"
    "\n"
    "向正在运行的 Vantrel 发出的命令：\n"
    "  off                不显示任何效果\n"
    "  highlight          显示高亮；此命令及后面四个命令会在需要时启动 Vantrel\n"
    "  laser              显示激光\n"
    "  toggle highlight   显示高亮；如已显示则关闭\n"
    "  toggle laser       显示激光；如已显示则关闭\n"
    "  settings           打开设置窗口\n"
    "  status [--json]    输出模式：off、highlight 或 laser；或以 JSON 输出更多信息\n"
    "  quit               退出 Vantrel\n"
    "\n"
    "退出状态：0 完成，1 失败，2 无法理解，3 Vantrel 未在此显示器上运行。";

using Status = CommandAnswer::Status;

CommandAnswer misunderstood(const CommandWords& words) {
    std::string text;
    for (const auto& word : words) {
        text.append(text.empty() ? "" : " ").append(word);
    }
    return {.status = Status::wrongUsage,
            .text = said("unknown command \"", "未知命令“") + text +
                    said("\", see vantrel --help", "”，请参阅 vantrel --help")};
}

// What is opened later would be taken for one of them where the caller has closed it.
void openStandardDescriptors() {
    int descriptor = 0;
    while (descriptor <= STDERR_FILENO && descriptor >= 0) {
        descriptor = open("/dev/null", O_RDWR);
    }
    close(descriptor);
}

// Both the program and a command to the running one are modules: neither loads what only the other
// needs, and each library that the executable itself needed would be searched for every symbol of
// the program, before those that have it.
int run(const Module& module, const Start& start) {
    if (runningExecutable().empty()) {
        return report(failure(said("cannot determine its own path", "无法确定自身的路径")));
    }
    void* loaded = dlopen(moduleFile(module.file).c_str(), RTLD_LAZY | RTLD_LOCAL);
    void* function = loaded != nullptr ? dlsym(loaded, module.function) : nullptr;
    if (function == nullptr) {
        return report(failure(said("cannot load the program: ", "无法加载程序：") + dlerror()));
    }
    return reinterpret_cast<RunModule*>(function)(start);
}

int runProgram(const Start& start) {
    return run(programModule, start);
}

} // namespace
} // namespace vantrel

int main(int argc, char** argv) {
    vantrel::openStandardDescriptors();
    const vantrel::CommandWords words(argv + std::min(argc, 1), argv + argc);
    if (std::ranges::find(words, "--help") != words.end()) {
        return vantrel::report(
            {.text = vantrel::said(vantrel::englishUsage, vantrel::chineseUsage)});
    }
    if (words == vantrel::CommandWords{"--version"}) {
        return vantrel::report({.text = "vantrel " VANTREL_VERSION " (" VANTREL_BUILD ")"});
    }
    const auto command = vantrel::parseCommand(words);
    if (!command) {
        return vantrel::report(vantrel::misunderstood(words));
    }
    const vantrel::Start start{argc, argv, words, *command, [] {}, vantrel::runProgram};
    return vantrel::run(command->isStart() ? vantrel::programModule : vantrel::commandModule,
                        start);
}
