#pragma once

#include "platform/display.h"
#include "platform/input.h"
#include "platform/overlay.h"
#include "platform/shell.h"

// In place of the parts of a desktop that a session has not, or that nothing is wanted of.

namespace vantrel {

class NoScreens final : public Screens {
public:
    [[nodiscard]] const std::vector<Screen>& list() const override { return none_; }
    Subscription onChange(std::function<void()> /*callback*/) override { return {}; }
    Subscription onLayoutChange(std::function<void()> /*callback*/) override { return {}; }

private:
    std::vector<Screen> none_;
};

class NoDisplayLinks final : public DisplayLinks {
public:
    std::unique_ptr<DisplayLink> create(const Screen& /*screen*/, FrameRateRange /*range*/,
                                        std::function<void()> /*target*/) override {
        return nullptr;
    }
};

class UnknownPointer final : public Pointer {
public:
    [[nodiscard]] std::optional<GlobalPoint> location() override { return std::nullopt; }
};

class NoEventMonitors final : public EventMonitors {
public:
    std::optional<Token> addGlobal(EventMask /*mask*/, GlobalHandler /*handler*/) override {
        return std::nullopt;
    }
    std::optional<Token> addLocal(EventMask /*mask*/, LocalHandler /*handler*/) override {
        return std::nullopt;
    }
    void remove(Token /*token*/) override {}
};

// Registers whatever it is asked for, as nobody has it, and is never pressed: that no shortcuts
// work is no matter of which they are.
class NoHotKeys final : public HotKeys {
public:
    void setHandler(std::function<void(HotKeyId)> /*handler*/) override {}
    void setLossHandler(std::function<void()> /*handler*/) override {}
    std::optional<Ref> register_(std::uint32_t /*keyCode*/, std::uint32_t /*modifiers*/,
                                 HotKeyId /*id*/) override {
        return 0;
    }
    void unregister(Ref /*ref*/) override {}
    void leaveKeys(bool /*left*/) override {}
    [[nodiscard]] bool canLeaveKeys() const override { return false; }
};

class NoOverlayWindows final : public OverlayWindows {
public:
    std::unique_ptr<OverlayWindow> create(const Screen& /*screen*/) override { return nullptr; }
};

class NoTransaction final : public Transaction {
public:
    void begin() override {}
    void commit() override {}
    void flush() override {}
};

class NoSystemTray final : public SystemTray {
public:
    [[nodiscard]] bool present() const override { return false; }
    [[nodiscard]] Subscription onChange(std::function<void()> /*callback*/) override { return {}; }
};

struct AbsentDesktop {
    NoScreens screens;
    UnknownPointer pointer;
    NoEventMonitors eventMonitors;
    NoHotKeys hotKeys;
    NoDisplayLinks displayLinks;
    NoOverlayWindows overlayWindows;
    NoTransaction transaction;
    NoSystemTray systemTray;
};

} // namespace vantrel
