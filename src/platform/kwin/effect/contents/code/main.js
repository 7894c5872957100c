// Hears of presses over all windows, which no script of KWin does, and tells the window that Vantrel's
// script has made. Keeps the windows of that above all others, menus among them, and from being faded
// in and out by other effects, and out of overviews. Draws nothing.

const isOurs = window => window.internalWindow && /^vantrel-/.test(window.internalWindow.title);

function markWindow() {
    const order = effects.stackingOrder;
    for (let i = order.length - 1; i >= 0; --i) {
        const window = order[i].internalWindow;
        if (window && window.title === "vantrel-mark")
            return window;
    }
    return null;
}

function take(window) {
    if (!isOurs(window))
        return;
    effects.setElevatedWindow(window, true);
    effect.grab(window, Effect.WindowAddedGrabRole);
    effect.grab(window, Effect.WindowClosedGrabRole);
}

effects.stackingOrder.forEach(take);
effects.windowAdded.connect(take);

let presses = 0;
effects.mouseChanged.connect((position, formerPosition, buttons, formerButtons) => {
    const pressed = buttons & ~formerButtons;
    const mark = pressed !== 0 ? markWindow() : null;
    // As text: KWin 5 does not survive thousands of calls from one of its engines into another.
    if (mark)
        mark.pressed = [pressed, position.x, position.y, ++presses].join(" ");
});

// An overview has a scene of its own, in which Plasma 6 would show the mark as one more window. What
// goes from one virtual desktop to another has not.
const desktopChanges = ["slide", "fadedesktop", "kwin4_effect_fadedesktop"];
let left = null;
effects.activeFullScreenEffectChanged.connect(() => {
    if (left)
        left.isLeftOut = false;
    const isOverview = effects.hasActiveFullScreenEffect
        && !desktopChanges.some(name => effects.activeEffects.includes(name));
    left = isOverview ? markWindow() : null;
    if (left)
        left.isLeftOut = true;
});
