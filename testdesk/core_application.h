#pragma once

#include <QCoreApplication>

#include <array>

namespace vantrel::desktop {

// The toolkit's event loop, for tests that need it in their own process.
class CoreApplication {
private:
    int argumentCount_ = 1;
    std::array<char, 5> name_{"test"};
    std::array<char*, 2> arguments_{name_.data(), nullptr};
    QCoreApplication application_{argumentCount_, arguments_.data()};
};

} // namespace vantrel::desktop
