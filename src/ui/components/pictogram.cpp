#include "ui/components/pictogram.h"

#include "ui/components/accessibility.h"

#include <QFile>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <cmath>

namespace vantrel {

namespace {

QString pathOf(std::string_view name) {
    return QStringLiteral(":/pictograms/%1.svg")
        .arg(QLatin1StringView(name.data(), static_cast<qsizetype>(name.size())));
}

QByteArray drawingOf(const QString& path, SymbolWeight weight) {
    QFile file(path);
    QByteArray drawing = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    if (weight == SymbolWeight::bold) {
        drawing.replace("stroke-width=\"1.75\"", "stroke-width=\"3.25\"");
    }
    return drawing;
}

QPixmap render(QSvgRenderer& drawing, int side, const QColor& color, double ratio) {
    const int pixels = static_cast<int>(std::ceil(side * ratio));
    QPixmap picture(pixels, pixels);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    drawing.render(&painter, picture.rect());
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(picture.rect(), color);
    painter.end();
    picture.setDevicePixelRatio(ratio);
    return picture;
}

} // namespace

int pictogramSide(int fontSize) {
    return static_cast<int>(std::lround(1.3 * fontSize));
}

QPixmap pictogram(std::string_view name, int side, const QColor& color, double devicePixelRatio,
                  SymbolWeight weight) {
    const QString path = pathOf(name);
    const QString key = QStringLiteral("%1 %2 %3 %4 %5")
                            .arg(path)
                            .arg(side)
                            .arg(color.name(QColor::HexArgb))
                            .arg(devicePixelRatio)
                            .arg(static_cast<int>(weight));
    QPixmap picture;
    if (QPixmapCache::find(key, &picture)) {
        return picture;
    }
    QSvgRenderer drawing(drawingOf(path, weight));
    if (!drawing.isValid()) {
        qWarning("there is no pictogram %s", qUtf8Printable(path));
        return {};
    }
    picture = render(drawing, side, color, devicePixelRatio);
    QPixmapCache::insert(key, picture);
    return picture;
}

Symbol::Symbol(std::string_view name, int fontSize, Tone tone) : name_(name), tone_(tone) {
    setFixedSize(pictogramSide(fontSize), pictogramSide(fontSize));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    hideFromScreenReaders(this);
}

void Symbol::setName(std::string_view name) {
    name_ = name;
    update();
}

void Symbol::setTone(Tone tone) {
    tone_ = tone;
    update();
}

void Symbol::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.drawPixmap(0, 0,
                       pictogram(name_, height(), toneColor(tone_, palette()), devicePixelRatio()));
}

} // namespace vantrel
