#include "ui/components/buttons.h"

#include "input/enter_key.h"
#include "ui/components/accessibility.h"
#include "ui/components/label.h"
#include "ui/components/pictogram.h"
#include "ui/components/stack.h"

#include <QPainter>
#include <QVBoxLayout>

namespace vantrel {

namespace {

// Some styles leave hardly any room around the text.
class FramedButton final : public QPushButton {
public:
    explicit FramedButton(ButtonRole role) : role_(role) {
        setAutoDefault(false);
        setDefault(role == ButtonRole::primary);
        setFont(bodyText.font());
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        tint();
    }

    [[nodiscard]] QSize sizeHint() const override {
        const QSize text = fontMetrics().size(Qt::TextShowMnemonic, this->text());
        return QPushButton::sizeHint().expandedTo(text + QSize(28, 10));
    }

protected:
    // Enter works it too, though it does not look like the default button meanwhile.
    void keyPressEvent(QKeyEvent* event) override {
        if (!clickOnEnter(*this, *event)) {
            QPushButton::keyPressEvent(event);
        }
    }
    void changeEvent(QEvent* event) override {
        if (event->type() == QEvent::PaletteChange) {
            tint();
        }
        QPushButton::changeEvent(event);
    }

private:
    void tint() {
        const auto red = toneColor(Tone::red, palette());
        if (role_ == ButtonRole::destructive && palette().color(QPalette::ButtonText) != red) {
            QPalette tinted;
            tinted.setColor(QPalette::ButtonText, red);
            setPalette(tinted);
        }
    }

    ButtonRole role_;
};

} // namespace

PlainButton::PlainButton(ViewContext& view, const Wording& name,
                         const std::function<void()>& action, QWidget* face) {
    setAutoDefault(true); // Enter works it when the keyboard is at it
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(face);
    face->setAttribute(Qt::WA_TransparentForMouseEvents);
    hideFromScreenReaders(face);
    connect(this, &QAbstractButton::clicked, this, action);
    nameForScreenReaders(view, this, name);
}

QSize PlainButton::sizeHint() const {
    return layout()->sizeHint();
}

bool PlainButton::hitButton(const QPoint& point) const {
    return rect().contains(point);
}

void PlainButton::paintEvent(QPaintEvent* /*event*/) {
    constexpr double radius = 6;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isDown() || underMouse()) {
        drawChrome(painter, palette(), rect(),
                   {.fill = {Tone::primary, isDown() ? 0.1 : 0.05}, .radius = radius});
    }
    drawFocusRing(painter, *this, rect(), radius);
}

PlainButton* iconButton(ViewContext& view, std::string_view symbol, int fontSize, Tone tone,
                        const Wording& name, const std::function<void()>& action,
                        const QMargins& padding) {
    auto* button = new PlainButton(view, name, action,
                                   row(0, {new Symbol(symbol, fontSize, tone)})->padded(padding));
    view.follow(button, [button, &view, name] { button->setToolTip(view.say(name)); });
    return button;
}

PlainButton* labelButton(ViewContext& view, std::string_view symbol, const Wording& title,
                         const TextStyle& style, const std::function<void()>& action) {
    auto* face = row(5, {new Symbol(symbol, style.size, style.tone), label(view, title, style)});
    return new PlainButton(view, title, action, face->padded(4, 3));
}

bool clickOnEnter(QAbstractButton& button, const QKeyEvent& event) {
    const bool enter = isEnter(event);
    if (enter && !event.isAutoRepeat()) {
        button.click();
    }
    return enter;
}

QPushButton* pushButton(ViewContext& view, const Wording& title,
                        const std::function<void()>& action, ButtonRole role) {
    auto* button = new FramedButton(role);
    QObject::connect(button, &QAbstractButton::clicked, button, action);
    view.follow(button, [button, &view, title] { button->setText(view.say(title)); });
    return button;
}

} // namespace vantrel
