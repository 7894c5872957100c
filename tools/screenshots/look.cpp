#include "look.h"

#include <fstream>

namespace vantrel::screenshots {
namespace {

constexpr const char* fonts = R"(<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "fonts.dtd">
<fontconfig>
  <alias binding="strong">
    <family>sans-serif</family>
    <prefer><family>Inter</family><family>Noto Sans CJK SC</family></prefer>
  </alias>
</fontconfig>
)";

// As a desktop stores them from which the toolkit takes its colours.
constexpr const char* darkColors = R"([Colors:Window]
BackgroundNormal=39,43,50
ForegroundNormal=235,238,242

[Colors:View]
BackgroundNormal=29,32,38
BackgroundAlternate=35,38,45
ForegroundNormal=235,238,242
ForegroundLink=96,165,250
ForegroundVisited=167,139,250

[Colors:Button]
BackgroundNormal=52,57,66
ForegroundNormal=235,238,242

[Colors:Selection]
BackgroundNormal=59,130,246
ForegroundNormal=255,255,255

[Colors:Tooltip]
BackgroundNormal=52,57,66
ForegroundNormal=235,238,242

[General]
font=Sans Serif,10,-1,5,50,0,0,0,0,0
)";

} // namespace

void writeLook(const std::filesystem::path& configHome) {
    std::filesystem::create_directories(configHome / "fontconfig");
    std::ofstream(configHome / "fontconfig" / "fonts.conf") << fonts;
    std::ofstream(configHome / "kdeglobals") << darkColors;
}

desktop::Environment darkDesktop() {
    return {{"QT_QPA_PLATFORMTHEME", "kde"}, {"KDE_SESSION_VERSION", "5"}};
}

} // namespace vantrel::screenshots
