#pragma once

#include "ui/components/style.h"

#include <QWidget>

namespace vantrel {

// A part on a rounded fill with a line along its edge.
class Plate : public QWidget {
public:
    Plate(const Chrome& chrome, QWidget* content);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Chrome chrome_;
};

} // namespace vantrel
