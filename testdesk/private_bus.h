#pragma once

#include "testdesk/child_process.h"

#include <QDBusConnection>
#include <QDBusMessage>

#include <filesystem>
#include <string>
#include <vector>

namespace vantrel::desktop {

// A D-Bus bus for one test, which starts no services. It ends with this.
class PrivateBus {
public:
    // Listens on a socket at that path, whose folder exists. Throws when it does not start.
    explicit PrivateBus(const std::filesystem::path& socket);

    [[nodiscard]] const std::string& address() const { return address_; }
    // Ends it before its time.
    void stop() { process_.terminate(); }

private:
    std::string address_;
    ChildProcess process_;
};

// Waits for the answer; throws what the other side objects.
QDBusMessage callOn(const QDBusConnection& bus, const QString& service, const QString& path,
                    const char* interface, const char* method, const QVariantList& arguments = {});

// A socket that takes connections, as the kernel does for a bus that hangs, and says nothing.
class SilentBus {
public:
    // At that path, whatever is there. Throws when it cannot listen.
    explicit SilentBus(const std::filesystem::path& socket);
    ~SilentBus();
    SilentBus(const SilentBus&) = delete;
    SilentBus& operator=(const SilentBus&) = delete;

    [[nodiscard]] const std::string& address() const { return address_; }
    // From now on connections wait to be taken.
    void fillQueue();

private:
    std::string address_;
    int socket_;
    std::vector<int> callers_;
};

} // namespace vantrel::desktop
