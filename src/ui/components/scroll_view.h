#pragma once

#include <QScrollArea>

namespace vantrel {

// Scrolls its content vertically when there is too little room, and keeps it at the top otherwise,
// or as high as the view when it expands.
// It is no stop for the keyboard itself: it shows what the keyboard comes to, and keys scroll it
// that the part with the focus does not take.
class ScrollView : public QScrollArea {
public:
    // What the bar takes at the trailing edge, in points, also while there is nothing to scroll.
    static constexpr int gutter = 10;

    explicit ScrollView(QWidget* content);

    // True when the key scrolls.
    bool scrollBy(Qt::Key key);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void reveal(QWidget* focused);
};

} // namespace vantrel
