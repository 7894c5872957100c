#pragma once

#include "platform/control.h"
#include "platform/freedesktop/command_call.h"
#include "platform/freedesktop/unique_descriptor.h"

#include <QObject>

#include <functional>
#include <memory>
#include <string>

class QSocketNotifier;

namespace vantrel {

// Where the running program takes commands: a local socket that has no file, whose address whoever
// looks for the program knows or must be told. The kernel says who is at either end, and only the
// same user is heard. One packet is a command, and one the answer.
class CommandSocket final : public QObject {
public:
    using Handler = std::function<CommandAnswer(const CommandRequest&)>;

    // What is sent from now on waits for the handler. The address is one that is free if none is
    // given. There is none when another socket has it, or when the system gives no socket.
    explicit CommandSocket(const std::string& address = {});
    ~CommandSocket() override;
    Q_DISABLE_COPY_MOVE(CommandSocket)

    [[nodiscard]] const std::string& address() const { return address_; }

    // Needs the event loop. Commands that come while there is no handler wait for the next, or find
    // that the program has gone.
    void setHandler(Handler handler);

private:
    void acceptCaller();
    void listenTo(UniqueDescriptor caller);

    UniqueDescriptor listening_;
    std::string address_;
    Handler handler_;
    std::unique_ptr<QSocketNotifier> callers_;
};

} // namespace vantrel
