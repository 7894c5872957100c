#include "gnome_shot.h"

#include "testdesk/gnome_session.h"
#include "testdesk/vantrel_program.h"
#include "testdesk/wait.h"

#include <QRect>

#include <stdexcept>
#include <string>

namespace vantrel::screenshots {

void takeGnomePicture(const std::filesystem::path& program, const std::filesystem::path& folder) {
    const desktop::GnomeSession session(
        {.dataFolder = program.parent_path().parent_path() / "share"});
    session.evaluate("const {Gio} = imports.gi;"
                     "const set = (group, name, value) =>"
                     "    new Gio.Settings({schema_id: `org.gnome.desktop.${group}`})"
                     "        .set_string(name, value);"
                     "set('background', 'primary-color', '#3b5d78');"
                     "set('interface', 'font-name', 'Inter 11'); 1");
    // Whichever the shell is for.
    for (const char* extension : {"marks43@vantrel.org", "marks@vantrel.org"}) {
        session.switchExtension(QString::fromLatin1(extension), true);
    }
    auto preferences = desktop::preferencesShowing("highlight");
    preferences["highlight"]["opacity"] = 0.45;
    desktop::writePreferences(session.folder() / "config", preferences);
    const desktop::ChildProcess vantrel(
        {.arguments = {program}, .environment = session.environment()});
    const bool isMarked = desktop::waitFor([&] {
        return session.evaluate("Main.layoutManager.uiGroup.get_children()"
                                "    .some(({name}) => name === 'vantrel')") == true;
    });
    if (!isMarked) {
        throw std::runtime_error("GNOME Shell shows no mark");
    }
    // Without what a session of its own complains of.
    session.evaluate("Main.messageTray.getSources().forEach(source => source.destroy());"
                     "Main.panel.statusArea.dateMenu.menu.open(); 1");
    session.moveTo(861, 271);
    constexpr QRect area(240, 0, 800, 480);
    if (!session.picture(true).copy(area).save(QString::fromStdString(folder / "gnome-menu.png"))) {
        throw std::runtime_error("the picture of GNOME cannot be written");
    }
}

} // namespace vantrel::screenshots
