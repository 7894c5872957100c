#include "app/shell/window_activation.h"

#include <QEvent>
#include <QWindow>

#include <utility>

namespace vantrel {

namespace {

// Lives until its window is on the screen.
class Exposure final : public QObject {
public:
    Exposure(QWindow& window, std::function<void()> call)
        : QObject(&window), call_(std::move(call)) {
        window.installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Expose && static_cast<QWindow*>(watched)->isExposed()) {
            watched->removeEventFilter(this);
            deleteLater();
            call_();
        }
        return false;
    }

private:
    std::function<void()> call_;
};

} // namespace

void showActive(QWidget& window, Application& application, std::function<void()> shown) {
    if (window.isVisible() && !window.isActiveWindow() && !application.canActivate()) {
        window.hide();
    }
    // A window on another workspace is known to the desktop, though it is not exposed.
    const bool wasShown = window.isVisible() && !window.isMinimized();
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
    const auto now = [&window, &application, shown = std::move(shown)] {
        shown();
        application.activate(window.winId());
    };
    if (wasShown || window.windowHandle()->isExposed()) {
        now();
    } else {
        new Exposure(*window.windowHandle(), now);
    }
}

void hideInsteadOfClosing(QWidget& window, QCloseEvent& event) {
    event.ignore();
    QMetaObject::invokeMethod(&window, &QWidget::hide, Qt::QueuedConnection);
}

} // namespace vantrel
