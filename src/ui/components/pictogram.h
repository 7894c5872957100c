#pragma once

#include "ui/components/style.h"

#include <QPixmap>
#include <QWidget>

#include <string_view>

// Small pictures drawn for this program and named after what they stand for, such as
// "cursorarrow.rays". Each is tinted in one colour.

namespace vantrel {

enum class SymbolWeight : unsigned char { regular, bold };

// The side of the square that a pictogram beside a text of that size takes, in points.
[[nodiscard]] int pictogramSide(int fontSize);

// A square picture; a null one when there is no such pictogram.
[[nodiscard]] QPixmap pictogram(std::string_view name, int side, const QColor& color,
                                double devicePixelRatio,
                                SymbolWeight weight = SymbolWeight::regular);

// A pictogram as a part of a view. Screen readers do not see it.
class Symbol : public QWidget {
public:
    Symbol(std::string_view name, int fontSize, Tone tone = Tone::primary);

    void setName(std::string_view name);
    void setTone(Tone tone);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::string_view name_;
    Tone tone_;
};

} // namespace vantrel
