#include "support/freedesktop_support.h"

#include "platform/freedesktop/environment_locale.h"
#include "platform/freedesktop/installed_bundle.h"

#include <gmock/gmock.h>

#include <array>

namespace vantrel {
namespace {

struct LanguageCase {
    LocaleVariables variables; // LANGUAGE, LC_ALL, LC_MESSAGES, LANG
    std::vector<std::string> expected;
};

TEST(EnvironmentLanguages, FollowTheVariablesInTheirOrderOfPrecedence) {
    const auto cases = std::to_array<LanguageCase>({
        {{"", "", "", ""}, {}},
        {{"", "", "", "C"}, {}},
        {{"", "", "", "C.UTF-8"}, {}},
        {{"zh_CN", "", "", "POSIX"}, {}},
        {{"zh_CN", "C", "", "de_DE.UTF-8"}, {}},
        {{"", "", "", "zh_CN.UTF-8@x"}, {"zh_CN"}},
        {{"", "", "", "zh_TW"}, {"zh_TW"}},
        {{"", "", "zh_CN.GB18030", "en_US.UTF-8"}, {"zh_CN"}},
        {{"", "en_US.UTF-8", "zh_CN.UTF-8", "zh_CN.UTF-8"}, {"en_US"}},
        {{"zh_CN:en", "", "", "de_DE@euro"}, {"zh_CN", "en", "de_DE"}},
        {{":zh_CN.UTF-8::", "", "", "de_DE"}, {"zh_CN", "de_DE"}},
        {{"C:zh_CN", "", "", "zh_CN.UTF-8"}, {"en"}},
        {{":", "", "", "zh_CN"}, {"zh_CN"}},
    });
    for (const auto& [variables, expected] : cases) {
        EXPECT_EQ(preferredLanguages(variables), expected)
            << variables.language << '|' << variables.lcAll << '|' << variables.lcMessages << '|'
            << variables.lang;
    }
}

TEST(EnvironmentLanguages, AreReadAnewAtEachCall) {
    const ScopedVariable all("LC_ALL", "de_DE.UTF-8");
    const ScopedVariable language("LANGUAGE", "zh_CN");
    EXPECT_EQ(EnvironmentLocale().preferredLanguages().front(), "zh_CN");
    const ScopedVariable other("LANGUAGE", "");
    EXPECT_EQ(EnvironmentLocale().preferredLanguages().front(), "de_DE");
}

TEST(Bundle, FindsTheResourcesBesideTheExecutable) {
    const TemporaryFolder prefix;
    putFile(prefix / "bin/vantrel", "");
    putFile(prefix / "share/vantrel/ReleaseConfiguration.plist", "<plist/>");
    const InstalledBundle bundle(prefix / "bin/vantrel");
    EXPECT_EQ(bundle.resource("ReleaseConfiguration", "plist"),
              prefix / "share/vantrel/ReleaseConfiguration.plist");
    EXPECT_EQ(bundle.resource("ReleaseConfiguration", "txt"), std::nullopt);
    EXPECT_EQ(InstalledBundle("/nowhere/vantrel").resource("ReleaseConfiguration", "plist"),
              std::nullopt);
    EXPECT_THAT(bundle.shortVersion().value(), testing::MatchesRegex("[0-9.]+"));
    EXPECT_THAT(bundle.buildNumber().value(), testing::Not(testing::IsEmpty()));
}

} // namespace
} // namespace vantrel
