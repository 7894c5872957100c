#include "platform/kwin/script_message.h"

#include <QBuffer>

#include <nlohmann/json.hpp>

#include <cmath>
#include <utility>

namespace vantrel {

namespace {

// Buttons are numbered as KWin does.
constexpr int leftButton = 1;
constexpr int rightButton = 2;

int sideOf(const Effect& effect) {
    constexpr int step = 8;
    return step * static_cast<int>(std::ceil((effect.diameter() + 2) / step));
}

std::string dataUrl(const QImage& picture) {
    QBuffer png;
    picture.save(&png, "png");
    return "data:image/png;base64," + png.data().toBase64().toStdString();
}

nlohmann::json ringMessage(int button, const ClickRing& ring) {
    return {{"button", button},
            {"duration", ring.duration},
            {"lineWidth", ring.lineWidth},
            {"start", ring.startDiameter},
            {"end", ring.endDiameter},
            {"opacity", ring.startOpacity},
            {"color", ring.color.name().toStdString()}};
}

} // namespace

QString scriptMessage(const Effect& effect, const std::vector<double>& scales,
                      const std::function<QImage(const Effect&, int, double)>& paint) {
    const int side = sideOf(effect);
    auto pictures = nlohmann::json::array();
    for (const double scale : scales) {
        pictures.push_back({{"scale", scale}, {"url", dataUrl(paint(effect, side, scale))}});
    }
    auto rings = nlohmann::json::array();
    for (const auto& [button, ring] :
         {std::pair{leftButton, effect.left}, std::pair{rightButton, effect.right}}) {
        if (ring) {
            rings.push_back(ringMessage(button, *ring));
        }
    }
    const nlohmann::json message{{"side", side},
                                 {"pictures", pictures},
                                 {"idle", effect.hideAfter.value_or(0)},
                                 {"rings", rings}};
    return QString::fromStdString(message.dump());
}

} // namespace vantrel
