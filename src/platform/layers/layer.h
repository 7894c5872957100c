#pragma once

#include "platform/geometry.h"

#include <QColor>
#include <QRectF>

#include <cstdint>
#include <functional>
#include <optional>
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

    // Draws into a rectangle of the layer's coordinates, its bounds.
    using Contents = std::function<void(QPainter& painter, const QRectF& bounds)>;
    // Drawn below what else the layer shows, at every place that a picture of it is made for; an
    // empty one shows nothing.
    [[nodiscard]] const Contents& contents() const { return contents_; }
    void setContents(Contents contents);
    [[nodiscard]] double opacity() const { return opacity_; }
    void setOpacity(double opacity);
    [[nodiscard]] bool masksToBounds() const { return masksToBounds_; }
    void setMasksToBounds(bool masks);

    // The last one is on top.
    [[nodiscard]] const std::vector<Layer*>& sublayers() const { return sublayers_; }
    void addSublayer(Layer& layer);
    void removeFromSuperlayer();

protected:
    void changed();

private:
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
    double opacity_ = 1;
    bool masksToBounds_ = false;
};

// The ellipse inscribed in a rectangle, and the opacity of the layer that shows it.
struct ShapeState {
    Rect ellipse;
    double opacity = 1;

    bool operator==(const ShapeState&) const = default;
};

// From one state to another at an even pace. Before it begins and after it ended, the layer shows
// its own values. Only stroked circles right below the root of a tree are animated.
struct ShapeAnimation {
    ShapeState from;
    ShapeState to;
    double beginTime = 0; // media time
    double duration = 0;  // seconds
};

// A layer that strokes an ellipse.
class ShapeLayer final : public Layer {
public:
    // The inscribed ellipse of a rectangle is the path; without one the layer shows nothing.
    [[nodiscard]] const std::optional<Rect>& path() const { return path_; }
    void setPath(std::optional<Rect> path);
    // An invalid colour means none.
    [[nodiscard]] const QColor& strokeColor() const { return strokeColor_; }
    void setStrokeColor(const QColor& color);
    [[nodiscard]] double lineWidth() const { return lineWidth_; }
    void setLineWidth(double width);

    [[nodiscard]] const std::optional<ShapeAnimation>& animation() const { return animation_; }
    void setAnimation(const ShapeAnimation& animation);
    [[nodiscard]] bool isAnimatingAt(double mediaTime) const;

    // What it shows at a media time; nothing when it has no path then.
    [[nodiscard]] std::optional<ShapeState> stateAt(double mediaTime) const;

private:
    std::optional<Rect> path_;
    QColor strokeColor_;
    double lineWidth_ = 1;
    std::optional<ShapeAnimation> animation_;
};

} // namespace vantrel
