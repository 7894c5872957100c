#pragma once

#include "testdesk/x_connection.h"

#include <filesystem>

#include <QImage>

namespace vantrel::demo {

// The stage as it is now, with the pointer.
[[nodiscard]] QImage photograph(const desktop::XConnection& connection);

// As a PNG; throws when it cannot be written.
void save(const QImage& picture, const std::filesystem::path& path);

} // namespace vantrel::demo
