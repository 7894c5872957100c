#pragma once

#include <QWidget>

namespace vantrel {

// What a window is drawn on: the desktop's window colour under a faint gradient. Filled by its
// content.
class VantrelBackground : public QWidget {
public:
    explicit VantrelBackground(QWidget* content);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace vantrel
