#pragma once

#include "testdesk/child_process.h"

#include <QImage>
#include <QSize>

#include <cstdint>
#include <filesystem>

namespace vantrel::desktop {

// A PipeWire for the programs of a session, with no devices.
class PipeWire {
public:
    // What it takes, GStreamer's part to receive pictures among it.
    [[nodiscard]] static bool isInstalled();

    // The environment names the folder for sockets and a session bus. Throws when it does not come
    // up.
    PipeWire(const Environment& environment, const std::filesystem::path& folder);

private:
    ChildProcess server_;
    ChildProcess manager_; // which links those who send with those who receive
};

// Receives the pictures of a screen cast.
class ScreenCast {
public:
    // By the number of its stream, of pictures of that size.
    ScreenCast(const Environment& environment, const std::filesystem::path& folder,
               std::uint32_t stream, QSize size);

    // The newest one; null before the first.
    [[nodiscard]] QImage picture() const;

private:
    std::filesystem::path file_;
    QSize size_;
    ChildProcess receiver_;
};

} // namespace vantrel::desktop
