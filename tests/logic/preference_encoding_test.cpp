#include "preferences/preference_encoding.h"
#include "preferences/settings_store.h"
#include "testdesk/headless/user_defaults.h"
#include "testdesk/temporary_folder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <clocale>
#include <cstdlib>
#include <limits>
#include <vector>

namespace vantrel {
namespace {

using Path = nlohmann::json::json_pointer;

const std::string defaultDocument =
    R"({"schemaVersion":1,"lastMode":"off",)"
    R"("highlight":{"style":"filled",)"
    R"("color":{"red":0.9803921568627451,"green":0.8,"blue":0.08235294117647059},)"
    R"("diameter":64,"opacity":0.35,"idleHide":false,"idleSeconds":3},)"
    R"("click":{"style":"ripple","left":true,"right":true},)"
    R"("laser":{"color":{"red":1,"green":0.27058823529411763,"blue":0.22745098039215686},)"
    R"("diameter":12,"glow":"medium"},)"
    R"("highlightShortcut":{"keyCode":4,"modifiers":6144,"display":"⌃⌥H"},)"
    R"("laserShortcut":{"keyCode":37,"modifiers":6144,"display":"⌃⌥L"},)"
    R"("launchAtLogin":false,"language":"system"})";

std::string replaced(std::string_view part, std::string_view other) {
    auto document = defaultDocument;
    return document.replace(document.find(part), part.size(), other);
}

std::string withMember(const std::string& member) {
    return replaced("{", "{" + member + ",");
}

// What differs from the defaults, and how the document says it, in both directions.
TEST(PreferenceDocument, IsExactlyThis) {
    const auto is = [](const std::string& document, auto change) {
        AppPreferences preferences;
        change(preferences);
        EXPECT_EQ(encodePreferences(preferences), document);
        EXPECT_EQ(decodePreferences(document), preferences);
    };
    is(defaultDocument, [](auto&) {});
    is(replaced(R"("filled")", R"("ring")"),
       [](auto& p) { p.highlight.style = HighlightStyle::ring; });
    is(replaced(R"("ripple")", R"("pulse")"), [](auto& p) { p.click.style = ClickStyle::pulse; });
    is(replaced(R"("left":true)", R"("left":false)"), [](auto& p) { p.click.left = false; });
    is(replaced(R"("highlightShortcut":{"keyCode":4,"modifiers":6144,"display":"⌃⌥H"},)", ""),
       [](auto& p) { p.highlightShortcut.reset(); });
    is(replaced("⌃⌥H", R"(⌃\"\\\/\u0000🖱)"),
       [](auto& p) { p.highlightShortcut->display = std::string("⌃\"\\/\0🖱", 11); });
    for (const double number : {-12.5, 0.1 + 0.2, 1e-5, 1e23, std::numeric_limits<double>::max(),
                                std::numeric_limits<double>::denorm_min()}) {
        AppPreferences preferences;
        preferences.highlight.diameter = number;
        EXPECT_EQ(decodePreferences(encodePreferences(preferences).value()), preferences);
    }
    AppPreferences broken;
    broken.highlightShortcut->display = "\xC3(";
    EXPECT_EQ(encodePreferences(broken), replaced("⌃⌥H", "\uFFFD("));
}

TEST(PreferenceDocument, NeedsEveryKeyButTheShortcuts) {
    const auto flat = nlohmann::json::parse(defaultDocument).flatten();
    auto paths =
        std::vector<std::string>{"/highlight",   "/highlight/color",   "/click",        "/laser",
                                 "/laser/color", "/highlightShortcut", "/laserShortcut"};
    for (const auto& [path, value] : flat.items()) {
        paths.push_back(path);
    }
    for (const auto& path : paths) {
        const bool optional = path.ends_with("Shortcut");
        auto document = nlohmann::json::parse(defaultDocument);
        document[Path(path)] = nullptr;
        EXPECT_EQ(decodePreferences(document.dump()).has_value(), optional) << path;
        document[Path(path)] = nlohmann::json::array();
        EXPECT_FALSE(decodePreferences(document.dump())) << path;
        document[Path(path).parent_pointer()].erase(Path(path).back());
        EXPECT_EQ(decodePreferences(document.dump()).has_value(), optional) << path;
    }
}

TEST(PreferenceDocument, TakesOnlyValuesOfTheTypeOfTheirKey) {
    const std::vector<std::pair<std::string, std::string>> refused{
        {R"("schemaVersion":1)", R"("schemaVersion":1.5)"},
        {R"("schemaVersion":1)", R"("schemaVersion":9223372036854775808)"},
        {R"("schemaVersion":1)", R"("schemaVersion":1e19)"},
        {R"("off")", R"("Off")"},
        {R"("medium")", "1"},
        {R"("diameter":64)", R"("diameter":"64")"},
        {R"("diameter":64)", R"("diameter":1e999)"},
        {R"("idleHide":false)", R"("idleHide":0)"},
        {R"("keyCode":4,)", R"("keyCode":-1,)"},
        {R"("keyCode":4,)", R"("keyCode":4294967296,)"},
        {"{", "[{"},
        {R"(system"})", R"(system"}{})"},
    };
    for (const auto& [part, other] : refused) {
        EXPECT_FALSE(decodePreferences(replaced(part, other))) << other;
    }
    EXPECT_FALSE(decodePreferences(defaultDocument + std::string(1, '\0') + "x"));
}

TEST(PreferenceDocument, TakesWhatAStrictReaderMayTake) {
    const std::string deep(maximumDocumentSize / 3, '[');
    AppPreferences changed;
    const auto reads = [&](const std::string& document) {
        EXPECT_EQ(decodePreferences(document), changed) << document.substr(0, 80);
    };
    reads(withMember(R"("other":{"a":[null,1e5,"\ud83d\ude00"]})"));
    reads(withMember(R"("deep":)" + deep + std::string(deep.size(), ']')));
    reads(replaced(R"("keyCode":37)", R"("keyCode":3.7e1)"));
    changed.highlight.diameter = 18446744073709551616.0;
    reads(replaced(R"("diameter":64)", R"("diameter":18446744073709551616)"));
    EXPECT_FALSE(decodePreferences(defaultDocument + std::string(maximumDocumentSize, ' ')));
}

// In Pashto the decimal point has two bytes.
TEST(PreferenceDocument, IsTheSameInEveryLocale) {
    const desktop::TemporaryFolder folder;
    const auto make = "localedef -i ps_AF -f UTF-8 " + (folder / "ps_AF.UTF-8").string();
    ASSERT_EQ(std::system(make.c_str()), 0);
    setenv("LOCPATH", folder.path().c_str(), 1);
    ASSERT_NE(std::setlocale(LC_ALL, "ps_AF.UTF-8"), nullptr);
    const auto written = encodePreferences(AppPreferences());
    const auto read = decodePreferences(defaultDocument);
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(written, defaultDocument);
    EXPECT_EQ(read, AppPreferences());
}

class SettingsStoreTest : public ::testing::Test {
protected:
    headless::UserDefaults defaults;
    SettingsStore store{defaults, "preferences"};
};

TEST_F(SettingsStoreTest, LoadsTheDefaultsAndKeepsTheBytesWhenTheyAreOfNoUse) {
    EXPECT_EQ(store.load(), AppPreferences());
    const std::string key = R"("schemaVersion":)";
    const auto usable = replaced(R"("launchAtLogin":false)", R"("launchAtLogin":true)");
    for (const std::string version : {"0", "2", "-1"}) {
        auto foreign = usable;
        foreign.replace(foreign.find(key + '1'), key.size() + 1, key + version);
        defaults.setData("preferences", foreign);
        EXPECT_EQ(store.load(), AppPreferences()) << version;
        EXPECT_EQ(defaults.data("preferences"), foreign);
    }
    defaults.setBoolean("preferences", true);
    EXPECT_EQ(store.load(), AppPreferences());
}

TEST_F(SettingsStoreTest, SavesExactlyWhatItIsGivenAndBoundsItWhenLoading) {
    AppPreferences changed;
    changed.highlight.diameter = 300;
    store.save(changed);
    const auto saved = defaults.data("preferences");
    EXPECT_EQ(saved, encodePreferences(changed));
    changed.highlight.diameter = 120;
    EXPECT_EQ(store.load(), changed);
    for (const double value :
         {std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::infinity()}) {
        changed.laser.color.blue = value;
        store.save(changed);
    }
    EXPECT_EQ(defaults.data("preferences"), saved);
}

} // namespace
} // namespace vantrel
