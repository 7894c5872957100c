#include "photograph.h"

#include "pictures.h"
#include "testdesk/screen_capture.h"

#include <stdexcept>

#include <QPainter>
#include <xcb/xfixes.h>

namespace vantrel::demo {
namespace {

// The pointer is no part of the screen's pixels.
void paintPointer(const desktop::XConnection& connection, QImage& image) {
    const auto version = desktop::ownReply(xcb_xfixes_query_version_reply(
        connection.get(), xcb_xfixes_query_version(connection.get(), 4, 0), nullptr));
    const auto pointer = desktop::ownReply(xcb_xfixes_get_cursor_image_reply(
        connection.get(), xcb_xfixes_get_cursor_image(connection.get()), nullptr));
    if (!version || !pointer) {
        return;
    }
    const auto* pixels = xcb_xfixes_get_cursor_image_cursor_image(pointer.get());
    const QImage shape(reinterpret_cast<const uchar*>(pixels), pointer->width, pointer->height,
                       QImage::Format_ARGB32_Premultiplied);
    QPainter(&image).drawImage(pointer->x - pointer->xhot, pointer->y - pointer->yhot, shape);
}

} // namespace

QImage photograph(const desktop::XConnection& connection) {
    const desktop::Picture screen =
        desktop::captureScreen(connection, {0, 0, stageSize.width(), stageSize.height()});
    QImage image = QImage(reinterpret_cast<const uchar*>(screen.pixels.data()), stageSize.width(),
                          stageSize.height(), QImage::Format_RGB32)
                       .copy();
    paintPointer(connection, image);
    return image;
}

void save(const QImage& picture, const std::filesystem::path& path) {
    constexpr int smallest = 0;
    if (!picture.save(QString::fromStdString(path.string()), "PNG", smallest)) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

} // namespace vantrel::demo
