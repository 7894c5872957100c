#pragma once

#include <QIcon>
#include <QPixmap>
#include <QWidget>

namespace vantrel {

// The program's logo, without the toolkit's plugin for such drawings, which not every installation
// has.
[[nodiscard]] QIcon brandIcon();

// The program's logo in a square with rounded corners. Screen readers do not see it.
class BrandMark : public QWidget {
public:
    explicit BrandMark(int size); // points

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPixmap picture_; // at the scale that it was last painted at
};

} // namespace vantrel
