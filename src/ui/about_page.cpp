#include "ui/components/action_row.h"
#include "ui/components/brand_mark.h"
#include "ui/components/label.h"
#include "ui/components/section_card.h"
#include "ui/components/stack.h"
#include "ui/preference_controls.h"
#include "ui/settings_pages.h"

namespace vantrel {

namespace {

Wording versionLine(const Bundle& bundle) {
    return [&bundle](bool english) {
        return QStringLiteral("%1 %2 (%3)")
            .arg(Text{"Version", "版本"}(english),
                 QString::fromStdString(bundle.shortVersion().value_or("1.0.0")),
                 QString::fromStdString(bundle.buildNumber().value_or("1")));
    };
}

QWidget* identity(ViewContext& view) {
    const auto line = [&view](const Wording& wording, const TextStyle& style) {
        return paragraph(view, wording, style)->centered();
    };
    return column(8,
                  {new BrandMark(88), line(Text::name("Vantrel"), {28, QFont::Bold}),
                   line(tagline, calloutText.toned(Tone::secondary)),
                   line(versionLine(view.desktop().bundle), captionText.toned(Tone::secondary))},
                  Alignment::center)
        ->padded(0, 8);
}

QWidget* learnMore(ViewContext& view) {
    const auto link = [&view](const Text& title, std::string_view symbol, ReleaseLink kind) {
        return new ActionRow(view, title, symbol, std::nullopt,
                             [&state = view.state(), kind] { state.openLink(kind); });
    };
    return new SectionCard(
        view, Text{"Learn more", "了解更多"},
        column(8, {link({"Privacy", "隐私说明"}, "hand.raised", ReleaseLink::privacy), divider(),
                   link({"Terms of use", "使用条款"}, "doc.text", ReleaseLink::terms), divider(),
                   link({"Help and support", "帮助与支持"}, "questionmark.circle",
                        ReleaseLink::support)}));
}

} // namespace

QWidget* aboutPage(ViewContext& view) {
    return column(18, {identity(view), learnMore(view)});
}

} // namespace vantrel
