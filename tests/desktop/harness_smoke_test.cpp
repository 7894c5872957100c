#include "testdesk/private_server.h"
#include "testdesk/temporary_folder.h"
#include "testdesk/wait.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

namespace vantrel::desktop {
namespace {

// A process that nobody waited for yet has ended too.
bool hasEnded(pid_t process) {
    const std::string status = readFile("/proc/" + std::to_string(process) + "/status");
    return status.empty() || status.find("State:\tZ") != std::string::npos;
}

TEST(HarnessSmoke, AServerEndsWithTheProcessThatStartedIt) {
    const TemporaryFolder folder; // the starter has no time to clean up
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const pid_t starter = fork();
    if (starter == 0) {
        setenv("TMPDIR", folder.path().c_str(), 1);
        const PrivateServer server = PrivateServer::virtualScreen({64, 64});
        const pid_t pid = server.pid();
        const bool told = write(ends[1], &pid, sizeof(pid)) == sizeof(pid);
        raise(told ? SIGKILL : SIGABRT);
    }
    pid_t server = 0;
    ASSERT_EQ(read(ends[0], &server, sizeof(server)), static_cast<ssize_t>(sizeof(server)));
    EXPECT_EQ(waitpid(starter, nullptr, 0), starter);
    EXPECT_TRUE(waitFor([&] { return hasEnded(server); }));
    close(ends[0]);
    close(ends[1]);
}

} // namespace
} // namespace vantrel::desktop
