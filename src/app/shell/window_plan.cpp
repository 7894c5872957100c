#include "app/shell/window_plan.h"

#include "app/shell/window_activation.h"
#include "platform/native_windows.h"
#include "ui/components/brand_mark.h"

#include <QCursor>
#include <QGuiApplication>
#include <QIcon>
#include <QResizeEvent>
#include <QScreen>
#include <QVBoxLayout>
#include <QWindow>

namespace vantrel {

namespace {

const QScreen& screenOfPointer() {
    const auto* screen = QGuiApplication::screenAt(QCursor::pos());
    return screen != nullptr ? *screen : *QGuiApplication::primaryScreen();
}

// What a window's frame takes on most desktops, until this one tells.
constexpr QMargins usualFrame(1, 24, 1, 1);

// A window may open smaller than it can be made later.
class ContentWindow final : public QWidget {
public:
    ContentWindow(QSize contentSize, QWidget* content) {
        setWindowTitle(QStringLiteral("Vantrel"));
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSizeConstraint(QLayout::SetNoConstraint);
        layout->addWidget(content);
        place(windowPlacement(contentSize, usualFrame, availableAreaOf(screenOfPointer())));
    }

    void place(const QRect& place) {
        setMinimumSize(minimumContentSize.boundedTo(place.size()));
        setGeometry(place);
    }

protected:
    void closeEvent(QCloseEvent* event) override { hideInsteadOfClosing(*this, *event); }

    void resizeEvent(QResizeEvent* event) override {
        QWidget::resizeEvent(event);
        if (minimumContentSize.boundedTo(event->size()) == minimumContentSize) {
            setMinimumSize(minimumContentSize);
        }
    }
};

} // namespace

std::string_view keyOf(AppWindow window) {
    switch (window) {
    case AppWindow::settings:
        return "settings";
    case AppWindow::welcome:
        return "welcome";
    case AppWindow::help:
        return "help";
    }
    return {};
}

QRect windowPlacement(QSize contentSize, QMargins frame, const QRect& available) {
    const QRect room = available.marginsRemoved(frame);
    const QSize size = contentSize.boundedTo(room.size());
    return {room.topLeft() +
                QPoint((room.width() - size.width()) / 2, (room.height() - size.height()) / 2),
            size};
}

std::unique_ptr<QWidget> makeWindow(QSize contentSize, QWidget* content) {
    provideWindowIcon();
    return std::make_unique<ContentWindow>(contentSize, content);
}

void placeWithFrame(QWidget& window, QSize contentSize) {
    const auto placed = [&](QMargins frame) {
        return windowPlacement(contentSize, frame, availableAreaOf(*window.screen()));
    };
    if (window.size() == placed(usualFrame).size()) {
        static_cast<ContentWindow&>(window).place(placed(window.windowHandle()->frameMargins()));
    }
}

void provideWindowIcon() {
    if (QGuiApplication::windowIcon().isNull()) {
        const auto installed = QIcon::fromTheme(QStringLiteral("vantrel"));
        QGuiApplication::setWindowIcon(installed.isNull() ? brandIcon() : installed);
    }
}

} // namespace vantrel
