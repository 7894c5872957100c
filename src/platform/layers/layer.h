#pragma once

#include "platform/geometry.h"

#include <QImage>
#include <QPointF>
#include <QRectF>

#include <cstdint>
#include <functional>
#include <vector>

class QPainter;

namespace vantrel {

// One node of the retained tree. A layer is placed by its centre in its parent's coordinates; its
// own coordinates start at its bottom-left corner, y upward. Layers are owned by whoever shows
// them; the tree only links them, and a layer that goes away leaves the tree.
class Layer {
public:
    Layer();
    virtual ~Layer();
    Layer(const Layer&) = delete;
    Layer& operator=(const Layer&) = delete;

    // Never given to another layer of this process.
    [[nodiscard]] std::uint64_t id() const { return id_; }
    // Grows with every change of what the layer and those below it show. The layer's own position
    // and hidden flag count for its parent only.
    [[nodiscard]] std::uint64_t revision() const { return revision_; }

    [[nodiscard]] const Rect& bounds() const { return bounds_; }
    void setBounds(const Rect& bounds);
    [[nodiscard]] Point position() const { return position_; }
    void setPosition(Point position);
    [[nodiscard]] Rect frame() const;
    void setFrame(const Rect& frame);
    [[nodiscard]] bool hidden() const { return hidden_; }
    void setHidden(bool hidden);

    // Draws into a rectangle of the layer's coordinates, its bounds, as it looks at a media time.
    using Contents = std::function<void(QPainter& painter, const QRectF& bounds, double mediaTime)>;
    // Drawn below the sublayers, at every place that a picture of the layer is made for; an empty
    // one shows nothing.
    [[nodiscard]] const Contents& contents() const { return contents_; }
    void setContents(Contents contents);
    [[nodiscard]] bool masksToBounds() const { return masksToBounds_; }
    void setMasksToBounds(bool masks);

    // The last one is on top.
    [[nodiscard]] const std::vector<Layer*>& sublayers() const { return sublayers_; }
    void addSublayer(Layer& layer);
    void removeFromSuperlayer();

    // Whether it looks different from one moment to the next, as only layers right below the root
    // of a tree may, and such without sublayers.
    [[nodiscard]] virtual bool isAnimated() const { return false; }
    // Whether it and those below it show anything at a media time.
    [[nodiscard]] virtual bool showsAt(double /*mediaTime*/) const { return true; }
    // Draws it and those below it into an empty premultiplied picture, which has 32 bits if the
    // layer is animated. The layer's middle comes to a point of the picture's pixels. The result
    // holds all pixels that are not empty any more.
    [[nodiscard]] virtual QRect paintInto(QImage& picture, QPointF middle, double scale,
                                          double mediaTime) const;

private:
    void changed();

    template <typename T>
    void assign(T& field, T value) {
        if (!(field == value)) {
            field = std::move(value);
            changed();
        }
    }

    std::uint64_t id_;
    std::uint64_t revision_ = 1;
    Layer* superlayer_ = nullptr;
    std::vector<Layer*> sublayers_;
    Rect bounds_;
    Point position_;
    bool hidden_ = false;
    Contents contents_;
    bool masksToBounds_ = false;
};

} // namespace vantrel
