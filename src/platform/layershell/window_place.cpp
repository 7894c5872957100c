#include "platform/layershell/window_place.h"

#include <LayerShellQt/Window>

#include <QScreen>

extern "C" __attribute__((visibility("default"))) void
vantrelHangWindow(QWindow& window, const vantrel::EdgePlace& place) {
    using Layer = LayerShellQt::Window;
    auto* layer = Layer::get(&window);
    layer->setScope(QStringLiteral("vantrel-panel"));
    layer->setLayer(Layer::LayerTop);
    layer->setKeyboardInteractivity(Layer::KeyboardInteractivityOnDemand);
    layer->setScreenConfiguration(place.display != nullptr ? Layer::ScreenFromQWindow
                                                           : Layer::ScreenFromCompositor);
    if (place.display != nullptr) {
        window.setScreen(place.display);
    }
    Layer::Anchors anchors;
    anchors.setFlag(Layer::AnchorTop, place.edges.testFlag(Qt::TopEdge));
    anchors.setFlag(Layer::AnchorBottom, place.edges.testFlag(Qt::BottomEdge));
    anchors.setFlag(Layer::AnchorLeft, place.edges.testFlag(Qt::LeftEdge));
    anchors.setFlag(Layer::AnchorRight, place.edges.testFlag(Qt::RightEdge));
    layer->setAnchors(anchors);
    layer->setMargins(place.distance);
}
