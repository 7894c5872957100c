#pragma once

#include <QWidget>

namespace vantrel {

// What a window is drawn on: the desktop's window colour under a faint gradient. Filled by its
// content, which it tints in blue. Keys that nothing in it takes scroll what is scrolled in it.
class VantrelBackground : public QWidget {
public:
    explicit VantrelBackground(QWidget* content);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void tint();
};

} // namespace vantrel
