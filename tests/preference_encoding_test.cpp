#include "platform/headless/headless_user_defaults.h"
#include "preferences/preference_encoding.h"
#include "preferences/settings_store.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <QProcess>
#include <QTemporaryDir>

#include <clocale>
#include <cmath>
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

TEST(PreferenceDocument, OfTheDefaultsIsExactlyThis) {
    EXPECT_EQ(encodePreferences(AppPreferences()), defaultDocument);
    EXPECT_EQ(decodePreferences(defaultDocument), AppPreferences());
}

TEST(PreferenceDocument, LeavesAnAbsentShortcutOut) {
    AppPreferences cleared;
    cleared.highlightShortcut.reset();
    cleared.laserShortcut.reset();
    const auto document = encodePreferences(cleared).value();
    EXPECT_EQ(nlohmann::json::parse(document).size(), 7U);
    EXPECT_EQ(document.find("hortcut"), std::string::npos);
    EXPECT_EQ(decodePreferences(document), cleared);
}

TEST(PreferenceDocument, WritesNumbersShortAndReadsThemBackExactly) {
    const std::vector<std::pair<double, std::string>> table{
        {64, "64"},
        {0.35, "0.35"},
        {0, "0"},
        {-0.0, "-0"},
        {-12.5, "-12.5"},
        {100000, "100000"},
        {0.1 + 0.2, "0.30000000000000004"},
        {0.0001, "0.0001"},
        {0.00001, "1e-05"},
        {9007199254740993, "9007199254740992"},
        {1e23, "1e+23"},
        {std::numeric_limits<double>::max(), "1.7976931348623157e+308"},
        {std::numeric_limits<double>::denorm_min(), "5e-324"},
    };
    for (const auto& [number, text] : table) {
        AppPreferences preferences;
        preferences.highlight.diameter = number;
        const auto document = encodePreferences(preferences).value();
        EXPECT_EQ(document, replaced(R"("diameter":64)", R"("diameter":)" + text));
        const auto read = decodePreferences(document).value().highlight.diameter;
        EXPECT_EQ(read, number);
        EXPECT_EQ(std::signbit(read), std::signbit(number));
    }
}

TEST(PreferenceDocument, HasNoFormForNumbersThatAreNotFinite) {
    for (const double value :
         {std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::infinity()}) {
        AppPreferences preferences;
        preferences.laser.color.blue = value;
        EXPECT_EQ(encodePreferences(preferences), std::nullopt);
    }
}

TEST(PreferenceDocument, KeepsEveryDisplayTextThatIsUnicode) {
    using namespace std::string_literals;
    const std::vector<std::pair<std::string, std::string>> table{
        {"⌃\"\\/", R"(⌃\"\\\/)"},
        {"\b\f\n\r\t\x1b\x7f", "\\b\\f\\n\\r\\t\\u001b\x7f"},
        {"\0"s, R"(\u0000)"},
        {"🖱\u2028", "🖱\u2028"},
    };
    for (const auto& [text, written] : table) {
        AppPreferences preferences;
        preferences.highlightShortcut->display = text;
        const auto document = encodePreferences(preferences).value();
        EXPECT_EQ(document, replaced("⌃⌥H", written));
        EXPECT_EQ(decodePreferences(document), preferences);
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
    const auto read = decodePreferences(replaced("highlightShortcut", "else")).value();
    EXPECT_EQ(read.highlightShortcut, std::nullopt);
    EXPECT_EQ(read.laserShortcut, Shortcut::defaultLaser());
}

TEST(PreferenceDocument, TakesOnlyValuesOfTheTypeOfTheirKey) {
    const std::vector<std::pair<std::string, std::string>> refused{
        {R"("schemaVersion":1)", R"("schemaVersion":1.5)"},
        {R"("schemaVersion":1)", R"("schemaVersion":"1")"},
        {R"("schemaVersion":1)", R"("schemaVersion":true)"},
        {R"("schemaVersion":1)", R"("schemaVersion":9223372036854775808)"},
        {R"("schemaVersion":1)", R"("schemaVersion":1e19)"},
        {R"("off")", R"("Off")"},
        {R"("ripple")", R"("RIPPLE")"},
        {R"("ripple")", R"("wave")"},
        {R"("medium")", "1"},
        {R"("diameter":64)", R"("diameter":"64")"},
        {R"("diameter":64)", R"("diameter":true)"},
        {R"("diameter":64)", R"("diameter":1e999)"},
        {R"("diameter":64)", R"("diameter":NaN)"},
        {R"("diameter":64)", R"("diameter":064)"},
        {R"("idleHide":false)", R"("idleHide":0)"},
        {R"("keyCode":4,)", R"("keyCode":-1,)"},
        {R"("keyCode":4,)", R"("keyCode":4294967296,)"},
        {R"("keyCode":4,)", R"("keyCode":4.5,)"},
        {R"("modifiers":6144,)", ""},
        {"⌃⌥H", R"(\ud83d)"},
        {"⌃⌥H", R"(\ude00\ud83d)"},
        {"⌃⌥H", "\xED\xA0\x80"},
        {"⌃⌥H", "\n"},
    };
    for (const auto& [part, other] : refused) {
        EXPECT_FALSE(decodePreferences(replaced(part, other))) << other;
    }
}

TEST(PreferenceDocument, TakesWhatAStrictReaderMayTake) {
    AppPreferences changed;
    const auto reads = [&](const std::string& document) {
        EXPECT_EQ(decodePreferences(document), changed) << document.substr(0, 80);
    };
    reads("\xEF\xBB\xBF" + defaultDocument);
    reads(" \t\r\n" + defaultDocument + "\n");
    reads(nlohmann::json::parse(defaultDocument).dump(4));
    reads(withMember(R"("other":{"a":[null,1e5,"\ud83d\ude00"]})"));
    reads(withMember(R"("language":"chinese")"));
    reads(withMember(R"("highlight":null)"));
    reads(replaced(R"("keyCode":4,)", R"("keyCode":4.0,)"));
    reads(replaced(R"("keyCode":37)", R"("keyCode":3.7e1)"));
    changed.highlight.diameter = 500;
    reads(replaced(R"("diameter":64)", R"("diameter":5e2)"));
    changed.highlight.diameter = 18446744073709551616.0;
    reads(replaced(R"("diameter":64)", R"("diameter":18446744073709551616)"));
}

TEST(PreferenceDocument, MustBeOneWholeObject) {
    for (std::size_t size = 0; size < defaultDocument.size(); ++size) {
        EXPECT_FALSE(decodePreferences(std::string_view(defaultDocument).substr(0, size))) << size;
    }
    for (const std::string rest : {"{}", ",", "x", "]", "\xEF\xBB\xBF"}) {
        EXPECT_FALSE(decodePreferences(defaultDocument + rest)) << rest;
    }
    EXPECT_FALSE(decodePreferences(defaultDocument + std::string(1, '\0') + "x"));
    EXPECT_FALSE(decodePreferences("[" + defaultDocument + "]"));
    EXPECT_FALSE(decodePreferences("null"));
}

TEST(PreferenceDocument, MayBeHugeOrDeepWithoutHarm) {
    const std::string openings(maximumDocumentSize - 2000, '[');
    const std::string half = openings.substr(openings.size() / 2);
    EXPECT_FALSE(decodePreferences(openings));
    EXPECT_FALSE(decodePreferences(withMember(R"("deep":)" + openings)));
    const auto balanced = withMember(R"("deep":)" + half + std::string(half.size(), ']'));
    EXPECT_EQ(decodePreferences(balanced), AppPreferences());
    std::string objects;
    while (objects.size() < maximumDocumentSize / 2) {
        objects += R"({"a":)";
    }
    EXPECT_FALSE(decodePreferences(objects));
    std::string huge;
    huge.resize(100'000'000, '[');
    EXPECT_FALSE(decodePreferences(huge));
    EXPECT_FALSE(decodePreferences(withMember(R"("long":")" + huge + '"')));
}

// A Pashto user's numbers have a decimal point of two bytes.
TEST(PreferenceDocument, IsTheSameInEveryLocale) {
    const QTemporaryDir folder;
    const auto locale = folder.filePath(QStringLiteral("ps_AF.UTF-8"));
    if (QProcess::execute(QStringLiteral("localedef"),
                          {QStringLiteral("-i"), QStringLiteral("ps_AF"), QStringLiteral("-f"),
                           QStringLiteral("UTF-8"), locale}) != 0) {
        GTEST_SKIP() << "the sources of the locales are not installed";
    }
    qputenv("LOCPATH", folder.path().toUtf8());
    ASSERT_NE(std::setlocale(LC_ALL, "ps_AF.UTF-8"), nullptr);
    const auto written = encodePreferences(AppPreferences());
    const auto read = decodePreferences(defaultDocument);
    std::setlocale(LC_ALL, "C");
    qunsetenv("LOCPATH");
    EXPECT_EQ(written, defaultDocument);
    EXPECT_EQ(read, AppPreferences());
}

class SettingsStoreTest : public ::testing::Test {
protected:
    // Bytes that are of no use: the defaults come from them, and they stay.
    void expectDefaultsFrom(const std::string& bytes) {
        defaults.setData("preferences", bytes);
        defaults.writes = 0;
        EXPECT_EQ(store.load(), AppPreferences()) << bytes;
        EXPECT_EQ(defaults.data("preferences"), bytes);
        EXPECT_EQ(defaults.writes, 0);
    }

    headless::UserDefaults defaults;
    SettingsStore store{defaults, "preferences"};
};

TEST_F(SettingsStoreTest, LoadsTheDefaultsAndKeepsTheBytesWhenTheyAreOfNoUse) {
    EXPECT_EQ(store.load(), AppPreferences());
    AppPreferences changed;
    changed.launchAtLogin = true;
    const std::string usable = encodePreferences(changed).value();
    const std::string key = R"("schemaVersion":)";
    for (const std::string version : {"0", "2", "-1", "1.5"}) {
        auto foreign = usable;
        expectDefaultsFrom(foreign.replace(foreign.find(key + '1'), key.size() + 1, key + version));
    }
    expectDefaultsFrom(usable.substr(1));
    expectDefaultsFrom("");
    store.save(changed);
    EXPECT_EQ(store.load(), changed);
    defaults.setBoolean("preferences", true);
    EXPECT_EQ(store.load(), AppPreferences());
}

TEST_F(SettingsStoreTest, SavesExactlyWhatItIsGivenAndBoundsItWhenLoading) {
    AppPreferences changed;
    changed.highlight.diameter = 300;
    changed.laserShortcut.reset();
    store.save(changed);
    EXPECT_EQ(defaults.data("preferences"), encodePreferences(changed));
    changed.highlight.diameter = 120;
    EXPECT_EQ(store.load(), changed);
}

TEST_F(SettingsStoreTest, WritesNothingWhenANumberIsNotFinite) {
    store.save(AppPreferences());
    AppPreferences broken;
    broken.highlight.opacity = std::numeric_limits<double>::quiet_NaN();
    store.save(broken);
    EXPECT_EQ(defaults.writes, 1);
    EXPECT_EQ(defaults.data("preferences"), defaultDocument);
}

} // namespace
} // namespace vantrel
