#include "platform/freedesktop/desktop_workspace.h"

#include <QProcess>
#include <QStandardPaths>
#include <csignal>
#include <memory>
#include <unistd.h>

namespace vantrel {
namespace {

// Runs on when this program ends. The signals that this program takes from a descriptor are blocked
// in it, and a child that inherited that could not be ended by them.
bool start(const QString& program, const QStringList& arguments) {
    auto process = std::make_unique<QProcess>();
    process->setStandardInputFile(QProcess::nullDevice());
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    process->setChildProcessModifier([] {
        setsid();
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
    });
    QObject::connect(process.get(), &QProcess::finished, process.get(), &QObject::deleteLater);
    process->start(program, arguments);
    if (!process->waitForStarted()) {
        return false;
    }
    static_cast<void>(process.release()); // it goes when the program that it started does
    return true;
}

} // namespace

bool DesktopWorkspace::openUrl(const std::string& url) {
    if (url.empty() || url.front() == '-') {
        return false;
    }
    const auto opener = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    return !opener.isEmpty() && start(opener, {QString::fromStdString(url)});
}

Subscription DesktopWorkspace::onWillSleep(std::function<void()> callback) {
    return loginManager_.onWillSleep(std::move(callback));
}

Subscription DesktopWorkspace::onDidWake(std::function<void()> callback) {
    return loginManager_.onDidWake(std::move(callback));
}

Subscription DesktopWorkspace::onWillShutDown(std::function<void()> callback) {
    return loginManager_.onWillShutDown(std::move(callback));
}

} // namespace vantrel
