#include "ui/welcome_view.h"

#include "ui/components/brand_mark.h"
#include "ui/components/buttons.h"
#include "ui/components/effect_preview.h"
#include "ui/components/label.h"
#include "ui/components/pictogram.h"
#include "ui/components/plate.h"
#include "ui/components/scroll_view.h"
#include "ui/components/stack.h"
#include "ui/preference_controls.h"

#include <QKeyEvent>

namespace vantrel {

namespace {

constexpr Chrome tileChrome{
    .fill = {Tone::sheet, 0.65}, .outline = {Tone::primary, 0.06}, .radius = 16};

QWidget* tile(ViewContext& view, EffectPreview* preview, const Text& title, const Text& line) {
    return new Plate(
        tileChrome,
        column(6, {preview, paragraph(view, title, {14, QFont::DemiBold})->centered(),
                   paragraph(view, line, captionText.toned(Tone::secondary))->centered()})
            ->padded(10));
}

QWidget* tiles(ViewContext& view) {
    auto* highlight =
        new EffectPreview(view, Text{"Local highlight preview", "高亮局部预览"}, {.height = 92});
    auto* laser = new EffectPreview(view, Text{"Local laser preview", "激光局部预览"},
                                    {.laser = true, .height = 92});
    return row(12, {tile(view, highlight, {"Cursor Highlight", "鼠标高亮"},
                         {"Follow every movement", "轻松跟随每次移动"}),
                    tile(view, laser, {"Laser Pointer", "激光笔"},
                         {"Focus on what matters", "让注意力聚焦重点"})});
}

QWidget* heading(ViewContext& view) {
    return column(8, {paragraph(view, tagline, {26, QFont::Bold})->centered(),
                      paragraph(view,
                                Text{"Make every point clear in presentations, lessons and screen "
                                     "recordings.",
                                     "为演示、教学与屏幕录制，让每个重点清晰可见。"},
                                calloutText.toned(Tone::secondary))
                          ->centered()});
}

QWidget* features(ViewContext& view) {
    static constexpr auto style = calloutText.toned(Tone::secondary);
    const auto feature = [&view](std::string_view symbol, const Text& title) {
        return row(6, {new Symbol(symbol, style.size, style.tone), label(view, title, style)});
    };
    return row(12, {feature("cursorarrow.click", {"Click effects", "点击反馈"}), spacer(),
                    feature("slider.horizontal.3", {"Easy to customize", "自由调整"})})
        ->padded(8, 0);
}

QWidget* body(ViewContext& view) {
    auto* brand = column(0, {new BrandMark(76)}, Alignment::center)->padded({0, 8, 0, 0});
    return new ScrollView(
        column(16, {brand, heading(view), tiles(view), features(view)}, Alignment::center)
            ->padded({24, 24, 24 - ScrollView::gutter, 24}));
}

QPushButton* startButton(ViewContext& view, const std::function<void()>& dismiss) {
    return pushButton(
        view, Text{"Get started", "开始使用"},
        [&defaults = view.desktop().userDefaults, dismiss] {
            defaults.setBoolean(welcomeDismissedKey, true);
            dismiss();
        },
        ButtonRole::primary);
}

} // namespace

WelcomeView::WelcomeView(ViewContext& view, const std::function<void()>& dismiss)
    : WelcomeView(view, startButton(view, dismiss)) {}

WelcomeView::WelcomeView(ViewContext& view, QPushButton* start)
    : VantrelBackground(
          column(0, {body(view), divider(), row(0, {spacer(), start, spacer()})->padded(20)})),
      start_(start) {}

void WelcomeView::keyPressEvent(QKeyEvent* event) {
    if (!clickOnEnter(*start_, *event)) {
        VantrelBackground::keyPressEvent(event);
    }
}

void WelcomeView::showEvent(QShowEvent* event) {
    start_->setFocus();
    VantrelBackground::showEvent(event);
}

} // namespace vantrel
