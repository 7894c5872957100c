#include "app/entry/background.h"

#include "app/entry/command_language.h"
#include "app/entry/running_instance.h"
#include "platform/freedesktop/unique_descriptor.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <memory>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vantrel {

namespace {

void replaceByNothing(std::initializer_list<int> descriptors) {
    const UniqueDescriptor nothing(open("/dev/null", O_RDWR | O_CLOEXEC));
    for (const int descriptor : descriptors) {
        dup2(nothing.get(), descriptor);
    }
}

// What the caller has open is in use no longer than by the caller.
void leaveCaller(int descriptorToKeep) {
    setsid();
    replaceByNothing({STDIN_FILENO, STDOUT_FILENO});
    const auto kept = static_cast<unsigned>(descriptorToKeep);
    close_range(STDERR_FILENO + 1, kept - 1, 0);
    close_range(kept + 1, ~0U, 0);
}

// The other end is closed when the child ends. One that ends as a failure has said why.
int awaitReady(pid_t child, int ready, std::chrono::milliseconds timeout) {
    pollfd descriptor{ready, POLLIN, 0};
    if (poll(&descriptor, 1, static_cast<int>(timeout.count())) != 1) {
        return report(failure(said("timed out while starting", "启动超时")));
    }
    char byte = 0;
    if (recv(ready, &byte, 1, 0) == 1) {
        return EXIT_SUCCESS;
    }
    int status = 0;
    const bool ended = waitpid(child, &status, 0) == child && WIFEXITED(status);
    return ended && WEXITSTATUS(status) != EXIT_SUCCESS
               ? WEXITSTATUS(status)
               : report(failure(said("exited while starting", "启动时已退出")));
}

} // namespace

int runInBackground(std::chrono::milliseconds timeout,
                    const std::function<int(std::function<void()> ready)>& program) {
    std::signal(SIGCHLD, SIG_DFL); // a caller that ignored it would leave no exit status
    std::array<int, 2> pair{-1, -1};
    const bool paired = socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair.data()) == 0;
    UniqueDescriptor waiting(pair[0]);
    const auto telling = std::make_shared<UniqueDescriptor>(pair[1]);
    const pid_t child = paired ? fork() : -1;
    if (child < 0) {
        return report(failure(said("cannot start: ", "无法启动：") + std::strerror(errno)));
    }
    if (child > 0) {
        telling->reset();
        return awaitReady(child, waiting.get(), timeout);
    }
    waiting.reset();
    leaveCaller(telling->get());
    return program([telling] {
        // Nor is the folder in which the caller is, once nothing more is looked for from there.
        [[maybe_unused]] const int left = chdir("/");
        replaceByNothing({STDERR_FILENO});
        send(telling->get(), "", 1, MSG_NOSIGNAL);
        telling->reset();
    });
}

} // namespace vantrel
