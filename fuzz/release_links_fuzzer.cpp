// Any bytes as the link configuration: a link that comes out is one that may be opened. Not binary
// property lists, which the library unfolds without bounds: who can write the installed file needs
// no trick to harm.

#include "preferences/release_links.h"
#include "require.h"

#include <QString>
#include <QUrl>

#include <cstddef>
#include <cstdint>

using namespace vantrel;

namespace {

void requireOpenable(const std::string& link, bool mailAllowed) {
    const QUrl url(QString::fromStdString(link), QUrl::StrictMode);
    const bool page = link.starts_with("https:") && !url.host().isEmpty();
    const bool mail = mailAllowed && link.starts_with("mailto:") && !url.path().isEmpty();
    require(url.isValid() && (page || mail));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view configuration(reinterpret_cast<const char*>(data), size);
    if (configuration.starts_with("bplist")) {
        return 0;
    }
    for (const auto link : {ReleaseLink::privacy, ReleaseLink::terms, ReleaseLink::support}) {
        if (const auto url = releaseURL(configuration, link)) {
            requireOpenable(*url, link == ReleaseLink::support);
        }
    }
    return 0;
}
