// The least that a Qt Widgets application in the tray can be: an icon with a menu, a popup that a
// click on it opens and closes, and a window that Control with the comma key opens from there.

#include <QApplication>
#include <QMenu>
#include <QScreen>
#include <QShortcut>
#include <QSystemTrayIcon>

#include <algorithm>
#include <memory>

namespace {

QIcon filledIcon() {
    QPixmap picture(22, 22);
    picture.fill(Qt::darkGreen);
    return {picture};
}

struct Popup : QWidget {
    Popup() : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint) { setFixedSize(340, 480); }
};

struct EmptyTray {
    EmptyTray() {
        menu.addAction(QStringLiteral("Quit"), qApp, &QApplication::quit);
        item.setContextMenu(&menu);
        item.setToolTip(QStringLiteral("Empty"));
        QObject::connect(&item, &QSystemTrayIcon::activated, &menu, [this](auto reason) {
            if (reason == QSystemTrayIcon::Trigger) {
                togglePopup();
            }
        });
        item.show();
    }

    void togglePopup() {
        if (!popup) {
            popup = std::make_unique<Popup>();
            auto* shortcut = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma), popup.get());
            QObject::connect(shortcut, &QShortcut::activated, popup.get(),
                             [this] { openWindow(); });
        }
        const QPoint place = item.geometry().center();
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        popup->move(std::clamp(place.x() - 170, screen.left(), screen.right() - 340),
                    place.y() > screen.center().y() ? item.geometry().top() - 480
                                                    : item.geometry().bottom() + 1);
        popup->setVisible(!popup->isVisible());
        popup->activateWindow();
    }

    void openWindow() {
        popup->hide();
        if (!window) {
            window = std::make_unique<QWidget>();
            window->setWindowTitle(QStringLiteral("Empty"));
            window->resize(560, 640);
            window->move(QGuiApplication::primaryScreen()->geometry().center() -
                         window->rect().center());
        }
        window->show();
        window->activateWindow();
    }

    QMenu menu;
    QSystemTrayIcon item{filledIcon()};
    std::unique_ptr<QWidget> popup;
    std::unique_ptr<QWidget> window;
};

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const EmptyTray tray;
    return QApplication::exec();
}
