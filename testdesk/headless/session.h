#pragma once

#include "platform/input.h"
#include "platform/session.h"
#include "platform/shell.h"
#include "platform/subscription.h"

#include <map>
#include <set>
#include <string>
#include <vector>

// The user's session and the installation around the program, each as the test sets it.

namespace vantrel::headless {

class LoginItem final : public vantrel::LoginItem {
public:
    [[nodiscard]] LoginItemStatus status() const override { return current; }
    bool register_() override { return change(registered); }
    bool unregister() override { return change(LoginItemStatus::notRegistered); }

    LoginItemStatus current = LoginItemStatus::notRegistered;
    LoginItemStatus registered = LoginItemStatus::enabled; // what registering leads to
    bool refuses = false;
    int changes = 0; // that were asked for

private:
    bool change(LoginItemStatus status) {
        ++changes;
        if (!refuses) {
            current = status;
        }
        return !refuses;
    }
};

class Workspace final : public vantrel::Workspace {
public:
    bool openUrl(const std::string& url) override {
        opened.push_back(url);
        return opensUrls;
    }
    Subscription onWillSleep(std::function<void()> callback) override {
        return willSleep_.add(std::move(callback));
    }
    Subscription onDidWake(std::function<void()> callback) override {
        return didWake_.add(std::move(callback));
    }

    void sleep() { willSleep_.notify(); }
    void wake() { didWake_.notify(); }

    std::vector<std::string> opened;
    bool opensUrls = true;

private:
    Observers<> willSleep_;
    Observers<> didWake_;
};

class Bundle final : public vantrel::Bundle {
public:
    [[nodiscard]] std::optional<std::filesystem::path>
    resource(std::string_view name, std::string_view extension) const override {
        const auto found = resources.find(std::string(name).append(".").append(extension));
        return found == resources.end() ? std::nullopt : std::optional(found->second);
    }
    [[nodiscard]] std::optional<std::string> shortVersion() const override { return version; }
    [[nodiscard]] std::optional<std::string> buildNumber() const override { return build; }

    std::map<std::string, std::filesystem::path> resources; // by "name.extension"
    std::optional<std::string> version = "1.0.0";
    std::optional<std::string> build = "1";
};

class Locale final : public vantrel::Locale {
public:
    [[nodiscard]] std::vector<std::string> preferredLanguages() const override { return languages; }

    std::vector<std::string> languages{"en-US"};
};

class AlertSound final : public vantrel::AlertSound {
public:
    void beep() override { ++beeps; }

    int beeps = 0;
};

class StatusItem final : public vantrel::StatusItem {
public:
    void setAction(std::function<void()> action) override { click = std::move(action); }
    void setImage(const QIcon& picture, const std::string& text) override {
        image = picture;
        description = text;
    }
    void setMenu(std::vector<MenuEntry> entries) override {
        menu = std::move(entries);
        ++menusSet;
    }
    [[nodiscard]] std::optional<QRect> place() const override { return where; }

    std::function<void()> click;
    QIcon image;
    std::string description;
    std::vector<MenuEntry> menu;
    int menusSet = 0;
    std::optional<QRect> where;
};

class Application final : public vantrel::Application {
public:
    void terminate() override { ++terminations; }
    void activate(WId window) override { activated.push_back(window); }
    [[nodiscard]] bool canActivate() const override { return activates; }
    bool hang(QWidget& /*window*/, const EdgePlace& place) override {
        hung = place;
        return hangs;
    }
    [[nodiscard]] std::string compositor() const override { return compositorName; }
    [[nodiscard]] SessionOffer offer() const override { return session; }

    int terminations = 0;
    std::vector<WId> activated;
    bool activates = true;
    EdgePlace hung;
    bool hangs = false;
    SessionOffer session;
    std::string compositorName;
};

class Keyboard final : public vantrel::Keyboard {
public:
    [[nodiscard]] std::optional<KeyPress> press(const KeyEvent& event) const override {
        const auto found = keys.find(event.key);
        return found == keys.end() ? std::nullopt
                                   : std::optional(KeyPress{found->second.keyCode, event.state,
                                                            found->second.characters});
    }

    [[nodiscard]] bool isModifier(std::uint32_t key) const override {
        return modifiers.contains(key);
    }

    struct Key {
        std::uint16_t keyCode = 0;
        std::optional<std::string> characters;
    };
    std::map<std::uint32_t, Key> keys; // by the desktop's number; a state is keyflag bits
    std::set<std::uint32_t> modifiers;
};

} // namespace vantrel::headless
