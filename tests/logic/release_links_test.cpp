#include "preferences/release_links.h"
#include "testdesk/headless/session.h"

#include <gtest/gtest.h>
#include <plist/plist.h>

#include <QTemporaryDir>

#include <cstdlib>
#include <fstream>
#include <vector>

namespace vantrel {
namespace {

std::string xml(const std::string& members) {
    return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)" + members +
           "</dict></plist>";
}

std::string xml(const std::string& key, const std::string& url) {
    return xml("<key>" + key + "</key><string>" + url + "</string>");
}

std::string binary(plist_t list) {
    char* bytes = nullptr;
    std::uint32_t size = 0;
    plist_to_bin(list, &bytes, &size);
    std::string result(bytes, size);
    std::free(bytes);
    plist_free(list);
    return result;
}

TEST(ReleaseLinks, AreHttpsWithAHostOrMailForSupport) {
    const auto accepts = [](const std::string& key, const std::string& url, ReleaseLink link) {
        return releaseURL(xml(key, url), link).has_value();
    };
    struct Case {
        std::string url;
        bool page = false;
        bool mail = false;
    };
    const Case cases[] = {
        {"https://example.com/privacy?a=b&amp;c#d", true},
        {"https://[::1]/", true},
        {"http://example.com"},
        {"HTTPS://example.com"},
        {"https://"},
        {"https://exa mple.com"},
        {"https://example.com/%zz"},
        {" https://example.com"},
        {""},
        {"mailto:help@example.com?subject=Vantrel", false, true},
        {"MAILTO:help@example.com"},
        {"mailto:"},
        {"mailto:?subject=Vantrel"},
        {"mailto://example.com"},
    };
    for (const auto& [url, page, mail] : cases) {
        EXPECT_EQ(accepts("PrivacyURL", url, ReleaseLink::privacy), page) << url;
        EXPECT_EQ(accepts("TermsURL", url, ReleaseLink::terms), page) << url;
        EXPECT_EQ(accepts("SupportURL", url, ReleaseLink::support), page || mail) << url;
    }
}

TEST(ReleaseLinks, NeedADictionaryOfNothingButStrings) {
    const std::string start =
        "<key>PrivacyURL</key><string>https://example.com/条?a=b&amp;c</string><key>Other</key>";
    EXPECT_EQ(releaseURL(xml(start + "<string/>"), ReleaseLink::privacy),
              "https://example.com/%E6%9D%A1?a=b&c");
    EXPECT_EQ(releaseURL(xml(start + "<string/>"), ReleaseLink::terms), std::nullopt);
    for (const std::string other : {"<integer>1</integer>", "<true/>", "<dict/>"}) {
        EXPECT_EQ(releaseURL(xml(start + other), ReleaseLink::privacy), std::nullopt) << other;
    }
    for (const std::string list :
         {"", "x", "bplist00",
          "<plist><array><string>https://example.com</string></array></plist>"}) {
        EXPECT_EQ(releaseURL(list, ReleaseLink::privacy), std::nullopt) << list;
    }
}

TEST(ReleaseLinks, AreReadAnewFromTheResourcesInEitherFormatEachTime) {
    const QTemporaryDir folder;
    headless::Bundle bundle;
    const auto link = [&bundle] { return releaseURL(bundle, ReleaseLink::support); };
    EXPECT_EQ(link(), std::nullopt);
    auto& path = bundle.resources["ReleaseConfiguration.plist"];
    path = folder.path().toStdString();
    EXPECT_EQ(link(), std::nullopt) << "a folder";
    path /= "links.plist";
    EXPECT_EQ(link(), std::nullopt) << "no file";
    std::ofstream(path) << xml("SupportURL", "https://example.com/1");
    EXPECT_EQ(link(), "https://example.com/1");
    plist_t list = plist_new_dict();
    plist_dict_set_item(list, "SupportURL", plist_new_string("mailto:help@example.com"));
    std::ofstream(path) << binary(list);
    EXPECT_EQ(link(), "mailto:help@example.com");
    std::ofstream(path, std::ios::app) << std::string(1 << 20, ' ');
    EXPECT_EQ(link(), std::nullopt) << "far too long";
}

} // namespace
} // namespace vantrel
