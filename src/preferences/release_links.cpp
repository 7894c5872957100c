#include "preferences/release_links.h"

#include <plist/plist.h>

#include <QString>
#include <QUrl>

#include <array>
#include <cstdlib>
#include <fstream>
#include <memory>

namespace vantrel {

namespace {

// Three links need less than one kilobyte.
constexpr std::size_t maximumFileSize = 1 << 14;

using PropertyList = std::unique_ptr<void, decltype(&plist_free)>;

constexpr const char* keyOf(ReleaseLink link) {
    constexpr std::array keys{"PrivacyURL", "TermsURL", "SupportURL"};
    return keys[static_cast<std::size_t>(link)];
}

// What can be read of the file, and no more than it takes to see that it is too large.
std::string contentsOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::string bytes(maximumFileSize + 1, '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return bytes;
}

PropertyList parse(std::string_view bytes) {
    plist_t root = nullptr;
    const auto size = static_cast<std::uint32_t>(bytes.size());
    if (bytes.size() <= maximumFileSize) {
        const bool binary = plist_is_binary(bytes.data(), size) != 0;
        // By its kind: plist_from_memory takes other arguments from one version to the next.
        (binary ? &plist_from_bin : &plist_from_xml)(bytes.data(), size, &root);
    }
    return {root, &plist_free};
}

bool holdsOnlyStrings(plist_t dictionary) {
    plist_dict_iter position = nullptr;
    plist_dict_new_iter(dictionary, &position);
    const std::unique_ptr<void, decltype(&std::free)> owner(position, &std::free);
    plist_t value = nullptr;
    do {
        plist_dict_next_item(dictionary, position, nullptr, &value);
    } while (value != nullptr && plist_get_node_type(value) == PLIST_STRING);
    return value == nullptr;
}

std::optional<QString> textOf(plist_t root, ReleaseLink link) {
    if (root == nullptr || plist_get_node_type(root) != PLIST_DICT || !holdsOnlyStrings(root)) {
        return std::nullopt;
    }
    const plist_t value = plist_dict_get_item(root, keyOf(link));
    if (value == nullptr) {
        return std::nullopt;
    }
    std::uint64_t length = 0;
    const char* text = plist_get_string_ptr(value, &length);
    return QString::fromUtf8(text, static_cast<qsizetype>(length));
}

// The scheme is looked for in the text, since a parsed URL has it in lower case.
bool isUsable(const QUrl& url, const QString& text, ReleaseLink link) {
    const bool page = text.startsWith(QLatin1String("https:")) && !url.host().isEmpty();
    const bool mail = link == ReleaseLink::support && text.startsWith(QLatin1String("mailto:")) &&
                      !url.path().isEmpty();
    return url.isValid() && (page || mail);
}

} // namespace

std::optional<std::string> releaseURL(const Bundle& bundle, ReleaseLink link) {
    const auto path = bundle.resource("ReleaseConfiguration", "plist");
    return path ? releaseURL(contentsOf(*path), link) : std::nullopt;
}

std::optional<std::string> releaseURL(std::string_view configuration, ReleaseLink link) {
    const auto root = parse(configuration);
    const auto text = textOf(root.get(), link);
    const QUrl url(text.value_or(QString()), QUrl::StrictMode);
    return text && isUsable(url, *text, link) ? std::optional(url.toEncoded().toStdString())
                                              : std::nullopt;
}

} // namespace vantrel
