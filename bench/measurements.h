#pragma once

#include "bench_desktop.h"
#include "comparison.h"

namespace vantrel::bench {

// How long and how often; the defaults are those of a real run, in which no part takes longer than
// a minute.
struct Effort {
    int turns = 12;
    int shellTurns = 9; // of GNOME Shell, which takes its time
    int motionsInTurn = 25;
    double secondsInTurn = 1;
    int starts = 90;
    int windowStarts = 8; // after each of which a window is opened
    int openings = 2;     // and again
    int reopenings = 25;
    int commands = 100;
    int partsOfDay = 5; // of five

    static Effort smoke() {
        return {.turns = 1,
                .shellTurns = 1,
                .motionsInTurn = 10,
                .secondsInTurn = 0.3,
                .starts = 1,
                .windowStarts = 1,
                .openings = 1,
                .reopenings = 5,
                .commands = 3,
                .partsOfDay = 1};
    }
};

// From injected motion to the first changed pixel.
[[nodiscard]] Report measureLatency(const Contenders& contenders, const Effort& effort);
// CPU time for 1000 motions a second, of all who take part in showing it.
[[nodiscard]] Report measureMotion(const Contenders& contenders, const Effort& effort);
// CPU time while nothing moves, and what is sent to the server then.
[[nodiscard]] Report measureRest(const Contenders& contenders, const Effort& effort);
// Three displays with eight live clicks, compared with plain motion on them; frames missed.
[[nodiscard]] Report measureClicks(const Contenders& contenders, const Effort& effort);
// From a pressed shortcut to the first changed pixel.
[[nodiscard]] Report measureShortcut(const Contenders& contenders, const Effort& effort);
// The same with the panel and the settings open, compared with none.
[[nodiscard]] Report measureSwitch(const Contenders& contenders, const Effort& effort);
// One change of a preference that shows nowhere, compared with one round trip to the X server.
[[nodiscard]] Report measureChange(const Contenders& contenders, const Effort& effort);
// Motion while 1000 changes a second come from a slider, compared with none; how often they are
// saved.
[[nodiscard]] Report measureSlider(const Contenders& contenders, const Effort& effort);
// Frames missed while the disk is busy with a save.
[[nodiscard]] Report measureSave(const Contenders& contenders, const Effort& effort);
// Beside an empty application in the tray, with nothing opened yet.
[[nodiscard]] Report measureMemory(const Contenders& contenders, const Effort& effort);
[[nodiscard]] Report measureStart(const Contenders& contenders, const Effort& effort);
// From the start of a command to its end, beside a program that makes an empty call on the bus.
[[nodiscard]] Report measureCommand(const Contenders& contenders, const Effort& effort);
// From the click on the icon, or the keys, until everything is painted; beside an empty popup and
// an empty window of the same sizes.
[[nodiscard]] Report measurePopup(const Contenders& contenders, const Effort& effort);
[[nodiscard]] Report measureSettings(const Contenders& contenders, const Effort& effort);
// From injected motion to the first changed pixel while a slider of the panel is dragged, compared
// with plain motion beside the open panel.
[[nodiscard]] Report measureDrag(const Contenders& contenders, const Effort& effort);
// What the program and the server hold after the panel and the settings were opened and closed
// again and again.
[[nodiscard]] Report measureReopening(const Contenders& contenders, const Effort& effort);
// CPU time of GNOME Shell for 1000 motions a second, compared with motions without a mark; frames
// of them with the mark elsewhere than the pointer. From a command to the mark. What the shell
// holds after many changes and clicks.
[[nodiscard]] Report measureShell(const Contenders& contenders, const Effort& effort);
// The same for KWin and the program together, and for KWin and a program that draws the mark by a
// layer shell and is told where the pointer is; the time of a command until its mark is there.
[[nodiscard]] Report measureKWin(const Contenders& contenders, const Effort& effort);
// What KWin holds after loading and unloading its script again and again, and after displays came
// and went.
[[nodiscard]] Report measureKWinMemory(const Contenders& contenders, const Effort& effort);
// In sway, beside the smallest follower that a layer shell lets there be: from injected motion to
// the painted mark, and CPU time for 1000 motions a second.
[[nodiscard]] Report measureSway(const Contenders& contenders, const Effort& effort);
// A day of use in a minute: what the program and the server hold at its end, what is left on the
// screen, and what was written to standard error.
[[nodiscard]] Report measureDay(const Contenders& contenders, const Effort& effort);
// The same where the compositor draws the marks, and of what that holds too.
[[nodiscard]] Report measureGnomeDay(const Contenders& contenders, const Effort& effort);
[[nodiscard]] Report measureKWinDay(const Contenders& contenders, const Effort& effort);

} // namespace vantrel::bench
