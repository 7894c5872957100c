// The least that a Qt Widgets application can be: one empty window.

#include <QApplication>
#include <QWidget>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QWidget window;
    window.setGeometry(100, 100, 400, 300);
    window.show();
    return QApplication::exec();
}
