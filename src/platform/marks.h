#pragma once

#include "platform/effect.h"
#include "platform/subscription.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>

// Marks that the desktop itself draws around the pointer.

namespace vantrel {

enum class MarksState : std::uint8_t {
    none,         // this desktop draws none
    available,    // what is shown is on the screen
    off,          // once they are switched on
    needsLogin,   // from the next login on
    otherVersion, // what draws them is of another version of the program, until the next login
    busy,         // it draws those of another program
    unsupported,  // what would draw them does not run in this version of the desktop
    failed,       // it did not start
};

// Where they are available, nothing of this program needs to know where the pointer is, nor of
// presses.
class Marks {
public:
    virtual ~Marks() = default;

    [[nodiscard]] virtual MarksState state() const = 0;
    // While they are available: what draws them, as other programs are told, and whether that hears
    // of presses.
    [[nodiscard]] virtual std::string_view drawer() const = 0;
    [[nodiscard]] virtual bool seesPresses() const = 0;
    [[nodiscard]] virtual Subscription onChange(std::function<void()> callback) = 0;
    // From now on, or from when they are available on; until the next call or clear().
    virtual void show(const Effect& effect) = 0;
    virtual void clear() = 0;
    // Switches them on, as far as the program can.
    virtual void enable() = 0;
};

// Those of a desktop that draws none.
class NoMarks final : public Marks {
public:
    [[nodiscard]] MarksState state() const override { return MarksState::none; }
    [[nodiscard]] std::string_view drawer() const override { return {}; }
    [[nodiscard]] bool seesPresses() const override { return false; }
    [[nodiscard]] Subscription onChange(std::function<void()> /*callback*/) override { return {}; }
    void show(const Effect& /*effect*/) override {}
    void clear() override {}
    void enable() override {}
};

// Of two kinds, the one that this desktop has.
class EitherMarks final : public Marks {
public:
    // Both must outlive it.
    EitherMarks(Marks& one, Marks& other) : one_(one), other_(other) {}

    [[nodiscard]] MarksState state() const override { return current().state(); }
    [[nodiscard]] std::string_view drawer() const override { return current().drawer(); }
    [[nodiscard]] bool seesPresses() const override { return current().seesPresses(); }
    [[nodiscard]] Subscription onChange(std::function<void()> callback) override {
        auto both = std::make_shared<std::pair<Subscription, Subscription>>(
            one_.onChange(callback), other_.onChange(callback));
        return Subscription([both] { *both = {}; });
    }
    void show(const Effect& effect) override {
        one_.show(effect);
        other_.show(effect);
    }
    void clear() override {
        one_.clear();
        other_.clear();
    }
    void enable() override { current().enable(); }

private:
    [[nodiscard]] Marks& current() const {
        return other_.state() == MarksState::none ? one_ : other_;
    }

    Marks& one_;
    Marks& other_;
};

} // namespace vantrel
