#pragma once

#include <QMargins>
#include <QWidget>

#include <initializer_list>

// Views are composed of stacks: a column of rows of parts. A stack owns its parts, and the keyboard
// visits them in their order.

namespace vantrel {

// Across the direction of a stack.
enum class Alignment : unsigned char { leading, center };

class Stack : public QWidget {
public:
    Stack(Qt::Orientation direction, int spacing, std::initializer_list<QWidget*> parts,
          Alignment alignment);

    void add(QWidget* part);
    // Room around the parts.
    Stack* padded(int all) { return padded({all, all, all, all}); }
    Stack* padded(int horizontal, int vertical) {
        return padded({horizontal, vertical, horizontal, vertical});
    }
    Stack* padded(const QMargins& margins);

private:
    Qt::Orientation direction_;
    Alignment alignment_;
};

// Parts that are null are left out. A part that hugs its contents keeps its width in a column.
[[nodiscard]] Stack* column(int spacing, std::initializer_list<QWidget*> parts,
                            Alignment alignment = Alignment::leading);
[[nodiscard]] Stack* row(int spacing, std::initializer_list<QWidget*> parts,
                         Alignment alignment = Alignment::center);
// Takes the room that the others leave.
[[nodiscard]] QWidget* spacer();
// A thin line across a column.
[[nodiscard]] QWidget* divider();

// Makes a part as wide as its contents. Returns it.
QWidget* hugging(QWidget* part);

// Brings the sizes of a part and of all that is shown in it up to date at once. The toolkit does it
// by and by, one level of nesting in each turn of the event loop.
void settleLayout(QWidget& part);

} // namespace vantrel
