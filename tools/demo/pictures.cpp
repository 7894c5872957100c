#include "pictures.h"

#include <array>
#include <initializer_list>
#include <vector>

#include <QFont>
#include <QFontMetricsF>
#include <QLinearGradient>
#include <QPainter>

namespace vantrel::demo {
namespace {

constexpr QColor ink(0x1F, 0x29, 0x37);
constexpr QColor faintInk(0x6B, 0x72, 0x80);
constexpr QColor hairline(0xE5, 0xE7, 0xEB);
constexpr QColor calm(0xC7, 0xD2, 0xE5);
constexpr QColor accent(0x31, 0x5E, 0xA8);
constexpr QColor editorGround(0x20, 0x25, 0x2E);

QFont sans(int pixels, QFont::Weight weight = QFont::Normal) {
    QFont font(QStringLiteral("Inter"));
    font.setPixelSize(pixels);
    font.setWeight(weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

QFont mono(int pixels) {
    QFont font(QStringLiteral("JetBrains Mono"));
    font.setPixelSize(pixels);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleHint(QFont::Monospace);
    return font;
}

// A blank picture of that size, with its painter.
struct Sheet {
    QImage image;
    QPainter painter;

    Sheet(QSize size, const QColor& ground) : image(size, QImage::Format_RGB32) {
        image.fill(ground);
        painter.begin(&image);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
        painter.setPen(Qt::NoPen);
    }
    ~Sheet() = default;
    Sheet(const Sheet&) = delete;
    Sheet& operator=(const Sheet&) = delete;

    void text(QPointF baseline, const QFont& font, const QColor& color, const QString& text) {
        painter.setFont(font);
        painter.setPen(color);
        painter.drawText(baseline, text);
        painter.setPen(Qt::NoPen);
    }

    void centredText(double x, double baseline, const QFont& font, const QColor& color,
                     const QString& words) {
        const double width = QFontMetricsF(font).horizontalAdvance(words);
        text({x - width / 2, baseline}, font, color, words);
    }

    void roundedRect(const QRectF& area, double radius, const QColor& color) {
        painter.setBrush(color);
        painter.drawRoundedRect(area, radius, radius);
    }

    QImage finished() {
        painter.end();
        return image;
    }
};

// Blurred by being painted small and enlarged.
void paintShadows(Sheet& sheet, std::initializer_list<QRect> windows) {
    constexpr int blur = 16;
    QImage shadows(stageSize / blur, QImage::Format_ARGB32_Premultiplied);
    shadows.fill(Qt::transparent);
    QPainter painter(&shadows);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(1.0 / blur, 1.0 / blur);
    for (const QRect& window : windows) {
        painter.fillRect(QRectF(window.translated(0, 8)), QColor(30, 41, 59, 56));
    }
    painter.end();
    sheet.painter.drawImage(sheet.image.rect(), shadows.scaled(stageSize, Qt::IgnoreAspectRatio,
                                                               Qt::SmoothTransformation));
}

void paintCaption(Sheet& sheet, const Caption& caption) {
    const double middle = stageSize.width() / 2.0;
    sheet.roundedRect(QRectF(middle - 250, 624, 500, 64), 14, QColor(0x1B, 0x21, 0x2B));
    sheet.centredText(middle, 652, sans(17, QFont::DemiBold), Qt::white, caption.title);
    sheet.centredText(middle, 674, sans(13), QColor(0xB4, 0xBF, 0xCE), caption.detail);
}

struct Point {
    const char* head;
    const char* tail;
};

constexpr std::array points{
    Point{"Fewer steps.", "Sign-up takes two screens instead of five."},
    Point{"Faster answers.", "Half of all questions end within a day."},
    Point{"Happier people.", "Nine in ten would recommend us."},
};

struct Bar {
    const char* quarter;
    int value;
};

constexpr std::array<Bar, barCount> bars{{{"Q1", 42}, {"Q2", 51}, {"Q3", 68}, {"Q4", 91}}};

constexpr int chartBottom = 470;

void paintPoints(Sheet& sheet) {
    double y = 208;
    for (const Point& point : points) {
        sheet.painter.setBrush(accent);
        sheet.painter.drawEllipse(QPointF(66, y - 6), 4, 4);
        sheet.text({86, y}, sans(19, QFont::DemiBold), ink, QString::fromLatin1(point.head));
        sheet.text({86, y + 27}, sans(16), faintInk, QString::fromLatin1(point.tail));
        y += 84;
    }
}

void paintChart(Sheet& sheet, std::optional<int> chosen) {
    sheet.painter.fillRect(QRect(444, chartBottom, 284, 1), hairline);
    for (int bar = 0; bar < barCount; ++bar) {
        const QRect area = barArea(bar);
        const bool isChosen = chosen == bar;
        const Bar& data = bars.at(static_cast<std::size_t>(bar));
        const QColor color = isChosen ? accent : calm;
        sheet.roundedRect(area, 5, color);
        sheet.painter.fillRect(area.adjusted(0, 8, 0, 0), color);
        sheet.centredText(area.center().x(), area.top() - 10, sans(15, QFont::DemiBold),
                          isChosen ? accent : faintInk, QString::number(data.value));
        sheet.centredText(area.center().x(), chartBottom + 24, sans(15), faintInk,
                          QString::fromLatin1(data.quarter));
    }
}

struct Word {
    const char* text;
    QColor color;
};

constexpr QColor plain(0xD6, 0xDC, 0xE6);
constexpr QColor keyword(0xC3, 0x9A, 0xE6);
constexpr QColor name(0x8A, 0xBE, 0xF0);
constexpr QColor literal(0x9C, 0xCF, 0xA2);
constexpr QColor remark(0x75, 0x80, 0x92);

const std::vector<std::vector<Word>>& program() {
    static const std::vector<std::vector<Word>> lines{
        {{"# How did the year go?", remark}},
        {{"from", keyword}, {" statistics ", plain}, {"import", keyword}, {" mean", plain}},
        {},
        {{"quarters", plain}, {" = [", plain}, {"42, 51, 68, 91", literal}, {"]", plain}},
        {},
        {{"def", keyword}, {" growth", name}, {"(values):", plain}},
        {{"    first, last = ", plain}, {"values[0], values[-1]", plain}},
        {{"    return", keyword}, {" (last - first) / first", plain}},
        {},
        {{"print", name}, {"(", plain}, {"f\"{growth(quarters):.0%}\"", literal}, {")", plain}},
        {{"print", name}, {"(", plain}, {"mean", name}, {"(quarters))", plain}},
    };
    return lines;
}

void paintLine(Sheet& sheet, QPointF baseline, const std::vector<Word>& words) {
    const QFont font = mono(14);
    for (const Word& word : words) {
        const QString text = QString::fromLatin1(word.text);
        sheet.text(baseline, font, word.color, text);
        baseline.rx() += QFontMetricsF(font).horizontalAdvance(text);
    }
}

} // namespace

QRect barArea(int bar) {
    constexpr int width = 46;
    constexpr int step = 71;
    const int height = 5 * bars.at(static_cast<std::size_t>(bar)).value / 2 + 20;
    return {457 + step * bar, chartBottom - height, width, height};
}

QImage paintDesktop(const Caption& caption) {
    Sheet sheet(stageSize, Qt::white);
    QLinearGradient sky(0, 0, stageSize.width(), stageSize.height());
    sky.setColorAt(0, QColor(0xDD, 0xE5, 0xEE));
    sky.setColorAt(1, QColor(0xA9, 0xBA, 0xCD));
    sheet.painter.fillRect(sheet.image.rect(), sky);
    paintShadows(sheet, {slideArea, editorArea});
    if (!caption.title.isEmpty()) {
        paintCaption(sheet, caption);
    }
    return sheet.finished();
}

QImage paintSlide(std::optional<int> chosenBar) {
    Sheet sheet(slideArea.size(), QColor(0xFD, 0xFD, 0xFE));
    sheet.text({56, 66}, sans(14, QFont::Medium), accent, QStringLiteral("ANNUAL REVIEW"));
    sheet.text({56, 118}, sans(40, QFont::Bold), ink, QStringLiteral("A year of small steps"));
    sheet.painter.fillRect(QRect(56, 148, 672, 1), hairline);
    paintPoints(sheet);
    paintChart(sheet, chosenBar);
    sheet.text({56, 510}, sans(13), faintInk,
               QStringLiteral("Customers helped each day, by quarter"));
    return sheet.finished();
}

QImage paintEditor() {
    Sheet sheet(editorArea.size(), editorGround);
    sheet.painter.fillRect(QRect(0, 0, editorArea.width(), 36), QColor(0x2A, 0x30, 0x3B));
    sheet.centredText(editorArea.width() / 2.0, 23, sans(13, QFont::Medium), plain,
                      QStringLiteral("growth.py"));
    double y = 66;
    int number = 1;
    for (const auto& line : program()) {
        sheet.text({18, y}, mono(12), QColor(0x55, 0x60, 0x70),
                   QString::number(number++).rightJustified(2));
        paintLine(sheet, {52, y}, line);
        y += 26;
    }
    return sheet.finished();
}

} // namespace vantrel::demo
