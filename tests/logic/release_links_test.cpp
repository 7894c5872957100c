#include "preferences/release_links.h"
#include "support/headless_session.h"

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
    struct Case {
        std::string url;
        bool page = false;
        bool mail = false;
    };
    const std::vector<Case> table{
        {"https://example.com/privacy?a=b&amp;c#d", true, false},
        {"https://[::1]/", true, false},
        {"http://example.com", false, false},
        {"HTTPS://example.com", false, false},
        {"Https://example.com", false, false},
        {"https://", false, false},
        {"https://exa mple.com", false, false},
        {"https://example.com/%zz", false, false},
        {" https://example.com", false, false},
        {"", false, false},
        {"mailto:help@example.com?subject=Vantrel", false, true},
        {"MAILTO:help@example.com", false, false},
        {"mailto:", false, false},
        {"mailto:?subject=Vantrel", false, false},
        {"mailto://example.com", false, false},
    };
    for (const auto& [url, page, mail] : table) {
        EXPECT_EQ(releaseURL(xml("PrivacyURL", url), ReleaseLink::privacy).has_value(), page)
            << url;
        EXPECT_EQ(releaseURL(xml("TermsURL", url), ReleaseLink::terms).has_value(), page) << url;
        EXPECT_EQ(releaseURL(xml("SupportURL", url), ReleaseLink::support).has_value(),
                  page || mail)
            << url;
    }
}

TEST(ReleaseLinks, AreEncodedForWhoeverOpensThem) {
    const auto link =
        releaseURL(xml("TermsURL", "https://example.com/条?a=b&amp;c"), ReleaseLink::terms);
    EXPECT_EQ(link, "https://example.com/%E6%9D%A1?a=b&c");
    EXPECT_EQ(releaseURL(xml("TermsURL", "https://example.com"), ReleaseLink::support),
              std::nullopt);
}

TEST(ReleaseLinks, NeedADictionaryOfNothingButStrings) {
    const std::string start =
        "<key>PrivacyURL</key><string>https://example.com</string><key>Other</key>";
    EXPECT_EQ(releaseURL(xml(start + "<string/>"), ReleaseLink::privacy), "https://example.com");
    for (const std::string other :
         {"<integer>1</integer>", "<true/>", "<data/>", "<array/>", "<dict/>", "<real>1</real>"}) {
        EXPECT_EQ(releaseURL(xml(start + other), ReleaseLink::privacy), std::nullopt) << other;
    }
    EXPECT_EQ(releaseURL(xml(""), ReleaseLink::privacy), std::nullopt);
    for (const std::string list :
         {"", "x", "bplist00", "<plist>", "<plist><string>https://example.com</string></plist>",
          "<plist><array><string>https://example.com</string></array></plist>"}) {
        EXPECT_EQ(releaseURL(list, ReleaseLink::privacy), std::nullopt) << list;
    }
}

TEST(ReleaseLinks, AreReadFromEitherFormat) {
    const std::string link = "mailto:help@example.com";
    plist_t list = plist_new_dict();
    plist_dict_set_item(list, "SupportURL", plist_new_string(link.c_str()));
    for (const auto& bytes : {binary(list), xml("SupportURL", link)}) {
        EXPECT_EQ(releaseURL(bytes, ReleaseLink::support), link);
    }
}

TEST(ReleaseLinks, AreReadAnewFromTheResourcesEachTime) {
    const QTemporaryDir folder;
    headless::Bundle bundle;
    const auto link = [&bundle] { return releaseURL(bundle, ReleaseLink::privacy); };
    EXPECT_EQ(link(), std::nullopt);
    auto& path = bundle.resources["ReleaseConfiguration.plist"];
    path = folder.path().toStdString();
    EXPECT_EQ(link(), std::nullopt) << "a folder";
    path /= "links.plist";
    EXPECT_EQ(link(), std::nullopt) << "no file";
    for (const std::string url : {"https://example.com/1", "https://example.com/2"}) {
        std::ofstream(path) << xml("PrivacyURL", url);
        EXPECT_EQ(link(), url);
    }
    std::ofstream(path, std::ios::app) << std::string(1 << 20, ' ');
    EXPECT_EQ(link(), std::nullopt) << "far too long";
}

} // namespace
} // namespace vantrel
