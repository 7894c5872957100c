#include "app/shell/window_plan.h"

#include "ui/settings_view.h"

#include <QCursor>
#include <QGuiApplication>
#include <QIcon>
#include <QResizeEvent>
#include <QScreen>
#include <QVBoxLayout>

namespace vantrel {

namespace {

// A window may open lower than it can be made later.
class ContentWindow final : public QWidget {
public:
    ContentWindow(QSize contentSize, QWidget* content) {
        setWindowTitle(QStringLiteral("Vantrel"));
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSizeConstraint(QLayout::SetNoConstraint);
        layout->addWidget(content);
        setMinimumSize(minimumContentSize.boundedTo(contentSize));
        resize(contentSize);
    }

protected:
    void resizeEvent(QResizeEvent* event) override {
        QWidget::resizeEvent(event);
        if (event->size().height() >= minimumContentSize.height()) {
            setMinimumSize(minimumContentSize);
        }
    }
};

} // namespace

WindowPlan planOf(AppWindow window) {
    switch (window) {
    case AppWindow::settings:
        return {"settings", {560, 640}};
    case AppWindow::welcome:
        return {"welcome", {560, 580}};
    case AppWindow::help:
        return {"help", {520, 540}};
    }
    return {};
}

std::unique_ptr<QWidget> makeWindow(QSize contentSize, QWidget* content) {
    if (QGuiApplication::windowIcon().isNull()) {
        QGuiApplication::setWindowIcon(
            QIcon::fromTheme(QStringLiteral("vantrel"), QIcon(QStringLiteral(":/BrandLogo.svg"))));
    }
    auto window = std::make_unique<ContentWindow>(contentSize, content);
    const auto* screen = QGuiApplication::screenAt(QCursor::pos());
    const QRect available =
        (screen != nullptr ? screen : QGuiApplication::primaryScreen())->availableGeometry();
    window->resize(contentSize.boundedTo(available.size()));
    window->move(available.center() - window->rect().center());
    return window;
}

} // namespace vantrel
