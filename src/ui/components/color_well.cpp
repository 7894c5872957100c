#include "ui/components/color_well.h"

#include "overlay/effect.h"
#include "ui/components/accessibility.h"
#include "ui/components/pictogram.h"

#include <QColorDialog>
#include <QPainter>
#include <QRgba64>
#include <QWindow>

namespace vantrel {

namespace {

constexpr QRectF wellRect(0, 4, 46, 26);
constexpr double cornerRadius = 6;

// Exactly what it was made of when it was made of bytes.
EffectColor toEffectColor(const QColor& color) {
    const QColor rgb = color.toRgb();
    if (!rgb.isValid()) {
        return EffectColor::fallback();
    }
    const auto part = [](quint16 value) { return value / 65535.0; };
    const auto parts = rgb.rgba64();
    return {part(parts.red()), part(parts.green()), part(parts.blue())};
}

// Ticks a checked well, over the edge of it, and so in the nearest widget around it that has the
// room.
class Badge final : public QWidget {
public:
    explicit Badge(QAbstractButton& well) : QWidget(&well), well_(&well) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hideFromScreenReaders(this);
        well.installEventFilter(this);
        connect(&well, &QAbstractButton::toggled, this, [this] { place(); });
        connect(&well, &QObject::destroyed, this, &QObject::deleteLater);
    }

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        if (const auto type = event->type(); type == QEvent::Move || type == QEvent::Resize ||
                                             type == QEvent::Show || type == QEvent::Hide) {
            place();
        }
        return false;
    }
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::white);
        painter.drawEllipse(QRectF(rect()).adjusted(3, 3, -3, -3));
        painter.drawPixmap(0, 0,
                           pictogram("checkmark.circle.fill", width(),
                                     toneColor(Tone::blue, palette()), devicePixelRatio()));
    }

private:
    void place() {
        if (well_ == nullptr) {
            return;
        }
        const int side = pictogramSide(11);
        QRect area(0, 0, side, side);
        area.moveCenter(wellRect.center().toPoint() - QPoint(0, 10));
        area.moveRight(static_cast<int>(wellRect.right()) + 2); // by 3 beyond it
        QWidget* host = well_;
        while (!host->rect().contains(area) && host->parentWidget() != nullptr) {
            area.translate(host->pos());
            host = host->parentWidget();
            host->installEventFilter(this);
        }
        if (host != parentWidget()) {
            setParent(host);
        }
        setGeometry(area);
        setVisible(well_->isChecked() && well_->isVisibleTo(host));
    }

    QPointer<QAbstractButton> well_;
};

// What a dialog knows of the bound colour.
struct Picking {
    Binding<EffectColor> color;
    EffectColor before = color.get(); // what cancelling brings back
    EffectColor known = before;

    // Whether the colour has been changed elsewhere: then that is what cancelling leaves.
    bool takeOver() {
        const auto bound = color.get();
        if (bound == known) {
            return false;
        }
        before = known = bound;
        return true;
    }
    void cancel() {
        if (!takeOver() && known != before) {
            color.set(before);
        }
    }
};

} // namespace

void CustomColorWell::Coordinator::colorChanged(const QColor& picked) {
    lastChange = toEffectColor(picked);
    color.set(*lastChange);
}

CustomColorWell::CustomColorWell(ViewContext& view, const Binding<EffectColor>& color,
                                 const Wording& label)
    : view_(view),
      label_(label),
      coordinator_(std::make_shared<Coordinator>(Coordinator{color, std::nullopt})),
      color_(toQColor(color.get())) {
    // The toolkit takes what can be checked for a check box, which opens nothing.
    setAccessibleRole(this, QAccessible::PushButton);
    setAutoDefault(true); // Enter works it
    setCheckable(true);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, &CustomColorWell::openDialog);
    new Badge(*this);
    nameForScreenReaders(view, this, label);
    view.follow(this, [this] { follow(); });
}

// What came from the dialog does not go back into it: that would disturb who is dragging there.
void CustomColorWell::follow() {
    const auto bound = coordinator_->color.get();
    if (coordinator_->lastChange != bound) {
        coordinator_->lastChange = bound;
        color_ = toQColor(bound);
        update();
    }
}

QColorDialog* CustomColorWell::dialog() const {
    return dialog_;
}

void CustomColorWell::openDialog() {
    if (dialog_ == nullptr) {
        dialog_ = makeDialog();
    }
    dialog_->show();
    dialog_->raise();
    dialog_->activateWindow();
}

// The dialog may outlive the well, whose panel closes when the dialog takes the focus.
QColorDialog* CustomColorWell::makeDialog() {
    auto* dialog = new QColorDialog(color_);
    dialog->setPalette(tint(palette())); // a window of its own does not inherit it
    const auto picking = std::make_shared<Picking>(Picking{coordinator_->color});
    const auto pick = [picking, coordinator = coordinator_,
                       well = QPointer(this)](const QColor& picked) {
        picking->takeOver();
        if (well != nullptr) {
            well->color_ = picked;
            well->update();
        }
        coordinator->colorChanged(picked);
        picking->known = picking->color.get();
    };
    connect(dialog, &QColorDialog::currentColorChanged, dialog, pick);
    connect(dialog, &QDialog::rejected, dialog, [picking] { picking->cancel(); });
    connect(dialog, &QDialog::finished, dialog, &QObject::deleteLater);
    auto& view = view_.root();
    view.follow(dialog, [&view, dialog, picking, label = label_] {
        dialog->setWindowTitle(view.say(label));
        if (picking->takeOver()) {
            const QSignalBlocker silence(dialog);
            dialog->setCurrentColor(toQColor(picking->known));
        }
    });
    connect(&view, &QObject::destroyed, dialog, [dialog] { delete dialog; });
    if (window()->windowType() == Qt::Window && window()->windowHandle() != nullptr) {
        dialog->winId();
        dialog->windowHandle()->setTransientParent(window()->windowHandle());
    }
    return dialog;
}

QSize CustomColorWell::sizeHint() const {
    return {46, 34};
}

void CustomColorWell::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame = wellRect;
    drawChrome(painter, palette(), frame,
               {.fill = {Tone::primary, isDown() ? 0.12 : 0.06},
                .outline = {Tone::primary, 0.12},
                .radius = cornerRadius});
    painter.fillPath(continuousRect(frame.adjusted(4, 4, -4, -4), 3), color_);
    drawChrome(painter, palette(), frame.adjusted(4, 4, -4, -4),
               {.outline = {Tone::primary, 0.12}, .radius = 3});
    drawFocusRing(painter, *this, frame, cornerRadius);
}

} // namespace vantrel
