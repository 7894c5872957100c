#include "testdesk/headless/desktop.h"

#include "platform/layers/painter.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vantrel::headless {

class DisplayLink final : public vantrel::DisplayLink {
public:
    DisplayLink(DisplayLinks& owner, std::function<void()> target)
        : owner_(owner), target_(std::move(target)) {
        owner_.links_.push_back(this);
    }
    ~DisplayLink() override { std::erase(owner_.links_, this); }
    DisplayLink(const DisplayLink&) = delete;
    DisplayLink& operator=(const DisplayLink&) = delete;

    [[nodiscard]] const std::function<void()>& target() const { return target_; }

private:
    DisplayLinks& owner_;
    std::function<void()> target_;
};

std::unique_ptr<vantrel::DisplayLink>
DisplayLinks::create(const Screen& screen, FrameRateRange range, std::function<void()> target) {
    lastScreenId = screen.id;
    lastRange = range;
    return std::make_unique<DisplayLink>(*this, std::move(target));
}

void DisplayLinks::fire() {
    const auto links = links_;
    for (const auto* link : links) {
        // An earlier target may have ended a later link.
        if (std::ranges::find(links_, link) != links_.end()) {
            const auto target = link->target();
            target();
        }
    }
}

OverlayWindows::~OverlayWindows() {
    if (!windows_.empty()) {
        faults_.add("an overlay window was left behind");
    }
}

std::unique_ptr<vantrel::OverlayWindow> OverlayWindows::create(const Screen& screen) {
    return std::make_unique<OverlayWindow>(*this, screen);
}

SpriteCounts OverlayWindows::counts() const {
    SpriteCounts sum;
    for (const auto* window : windows_) {
        sum.uploads += window->counts.uploads;
        sum.redraws += window->counts.redraws;
        sum.places += window->counts.places;
    }
    return sum;
}

OverlayWindow::OverlayWindow(OverlayWindows& owner, const Screen& screen)
    : owner_(owner), screen_(screen), scene_(pixels(), screen.backingScale) {
    owner_.windows_.push_back(this);
}

OverlayWindow::~OverlayWindow() {
    std::erase(owner_.windows_, this);
}

QSize OverlayWindow::pixels() const {
    return {static_cast<int>(std::lround(screen_.frame.width * screen_.backingScale)),
            static_cast<int>(std::lround(screen_.frame.height * screen_.backingScale))};
}

QImage OverlayWindow::picture(double mediaTime) const {
    return paintLayer(*root_, pixels(), screen_.backingScale, mediaTime);
}

QImage OverlayWindow::screenshot() const {
    QImage image(pixels(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    for (const auto& [id, sprite] : sprites_) {
        if (sprite.place) {
            painter.drawImage(*sprite.place, sprite.picture);
        }
    }
    return image;
}

void OverlayWindow::flush(double mediaTime) {
    if (root_ != nullptr) {
        scene_.update(*root_, mediaTime, *this);
    }
}

bool OverlayWindow::upload(SpriteId sprite, const QImage& picture, const QRect& changed) {
    auto& target = sprites_[sprite].picture;
    if (changed == picture.rect()) {
        ++counts.uploads;
        target = picture.copy();
        return !owner_.refusesUploads;
    }
    ++counts.redraws;
    for (int y = changed.top(); y <= changed.bottom(); ++y) {
        const auto* from = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        auto* to = reinterpret_cast<QRgb*>(target.scanLine(y));
        std::copy(from + changed.left(), from + changed.right() + 1, to + changed.left());
    }
    return !owner_.refusesUploads;
}

void OverlayWindow::place(SpriteId sprite, QPoint topLeft) {
    ++counts.places;
    sprites_[sprite].place = topLeft;
}

void OverlayWindow::hide(SpriteId sprite) {
    sprites_[sprite].place.reset();
}

void OverlayWindow::remove(SpriteId sprite) {
    sprites_.erase(sprite);
}

void Transaction::begin() {
    if (open_) {
        faults_.add("a transaction was begun inside another");
    }
    open_ = true;
    if (!watchesLayers) {
        return;
    }
    for (const auto* window : windows_.windows()) {
        const auto* root = window->rootLayer();
        if (root == nullptr) {
            continue;
        }
        const auto known = committed_.find(root->id());
        if (known != committed_.end() && root->revision() != known->second) {
            faults_.add("a layer was changed outside a transaction");
        }
    }
}

void Transaction::commit() {
    if (!open_) {
        faults_.add("a transaction was committed that was not begun");
    }
    open_ = false;
    ++commits;
    if (!watchesLayers) {
        return;
    }
    committed_.clear();
    for (const auto* window : windows_.windows()) {
        if (const auto* root = window->rootLayer()) {
            committed_[root->id()] = root->revision();
        }
    }
}

void Transaction::flush() {
    if (open_) {
        faults_.add("layers were flushed inside a transaction");
    }
    ++flushes;
    for (auto* window : windows_.windows()) {
        window->flush(clock_.mediaTime());
    }
}

EventMonitors::~EventMonitors() {
    if (!global_.empty() || !local_.empty()) {
        faults_.add("an event monitor was left behind");
    }
}

std::optional<EventMonitors::Token> EventMonitors::addGlobal(EventMask mask,
                                                             GlobalHandler handler) {
    ++installs;
    if (refusesGlobal) {
        return std::nullopt;
    }
    global_.emplace(++lastToken_, Monitor<GlobalHandler>{mask, std::move(handler)});
    return lastToken_;
}

std::optional<EventMonitors::Token> EventMonitors::addLocal(EventMask mask, LocalHandler handler) {
    ++installs;
    if (refusesLocal) {
        return std::nullopt;
    }
    local_.emplace(++lastToken_, Monitor<LocalHandler>{mask, std::move(handler)});
    return lastToken_;
}

void EventMonitors::remove(Token token) {
    if (global_.erase(token) + local_.erase(token) == 0) {
        faults_.add("an event monitor was removed that was not there");
    }
}

void EventMonitors::send(const Event& event) {
    if (event.window == nullptr) {
        const auto monitors = global_;
        for (const auto& [token, monitor] : monitors) {
            if ((monitor.mask & maskOf(event.type)) != 0) {
                monitor.handler(event);
            }
        }
        return;
    }
    const auto monitors = local_;
    for (const auto& [token, monitor] : monitors) {
        if ((monitor.mask & maskOf(event.type)) != 0 && monitor.handler(event) == std::nullopt) {
            return;
        }
    }
}

Desktop::operator vantrel::Desktop() {
    return {.clock = clock,
            .mainQueue = mainQueue,
            .screens = screens,
            .displayLinks = displayLinks,
            .cursors = cursors,
            .pointer = pointer,
            .eventMonitors = eventMonitors,
            .keyboard = keyboard,
            .hotKeys = hotKeys,
            .marks = marks,
            .overlayWindows = overlayWindows,
            .transaction = transaction,
            .locale = locale,
            .bundle = bundle,
            .userDefaults = userDefaults,
            .loginItem = loginItem,
            .workspace = workspace,
            .statusItem = statusItem,
            .alertSound = alertSound,
            .application = application};
}

void Desktop::frame(double seconds) {
    clock.advance(seconds);
    displayLinks.fire();
}

} // namespace vantrel::headless
