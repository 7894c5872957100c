#pragma once

#include "platform/layers/layer.h"

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QSize>

#include <cstdint>
#include <optional>
#include <vector>

namespace vantrel {

using SpriteId = std::uint64_t;

// Carries out what a scene decides. Pixels are the display's, from its top-left corner, y downward.
// Pictures are premultiplied, and only lent for the call.
class SpriteSink {
public:
    virtual ~SpriteSink() = default;

    // Of the pictures that it takes. One of 64 bits keeps the colours of what is nearly
    // transparent. Pictures of what is animated have 32 in any case.
    [[nodiscard]] virtual QImage::Format format() const {
        return QImage::Format_ARGB32_Premultiplied;
    }
    // The sprite's picture from now on. It differs from the former one inside an area only; a first
    // one, or one of another size, everywhere. False when it cannot be shown now; it is then
    // offered again with the next update.
    virtual bool upload(SpriteId sprite, const QImage& picture, const QRect& changed) = 0;
    virtual void place(SpriteId sprite, QPoint topLeft) = 0;
    virtual void hide(SpriteId sprite) = 0;
    virtual void remove(SpriteId sprite) = 0;
};

// Turns a tree into sprites: each layer right below the root is one picture, rendered when what it
// shows has changed and it is on the display, and moved otherwise. Whoever sits nearer to the top
// of the tree comes later.
class SpriteScene {
public:
    // No sprite is larger in pixels, whatever the settings ask for.
    static constexpr int maximumSide = 2048;
    // What is animated is drawn again at most this often, in seconds, however often the pointer
    // moves: well above every display's rate.
    static constexpr double minimumFrame = 0.004;

    SpriteScene(QSize display, double scale);

    // Brings the sink up to what the tree shows at a media time.
    void update(const Layer& root, double mediaTime, SpriteSink& sink);
    // Forgets what the sink knows, so that the next update tells it everything anew.
    void reset();

private:
    struct Sprite {
        SpriteId id = 0;
        std::uint64_t revision = 0; // of the layer when it was measured; 0 before the first time
        QRect box;                  // of the picture, relative to the layer's position
        bool rendered = false;
        std::optional<QPoint> placed; // where it shows now, if it does
        double drawnAt = 0;           // media time
        QRect inked;                  // pixels of the picture that are not empty
        bool seen = false;
    };

    Sprite& spriteOf(const Layer& layer);
    void removeUnseen(SpriteSink& sink);
    void updateSprite(Sprite& sprite, const Layer& layer, double mediaTime, SpriteSink& sink);
    [[nodiscard]] QPoint pixelOf(Point position) const;
    [[nodiscard]] QRect boxOf(const Layer& layer, const Rect& painted) const;
    void draw(Sprite& sprite, const Layer& layer, double mediaTime, SpriteSink& sink);
    static void hide(Sprite& sprite, SpriteSink& sink);

    QSize display_;
    double scale_;
    std::vector<Sprite> sprites_;
    QImage canvas_; // kept from frame to frame of what is animated
};

} // namespace vantrel
