// Shows what Vantrel says around KWin's own pointer, and the rings of presses. It knows no effect by
// name. One call to the program is always open: it is answered when there is something else to show,
// and the bus fails it in the moment in which the program is gone. Then all of this goes.

import QtQuick 2.15
import QtQuick.Window 2.15
import org.kde.kwin 3.0

// The root, since a window inside an item is never shown.
Window {
    id: mark

    readonly property int mostRings: 8

    // Empty while nothing is to be shown. Sizes in points, durations in seconds.
    // side: of the pictures. pictures: for each scale of a display one, with its url. idle: after which
    // rest of the pointer they hide, 0 for never. rings: button (1 left, 2 right), duration, lineWidth,
    // start and end (diameters to the middle of the line), opacity at the start, color.
    property var effect: ({})
    property int serial: 0
    property bool resting: false
    property real lastActivity: 0
    property var rings: [] // windows, the one that was used last at the end

    // Set by the effect.
    property bool isLeftOut: false
    onIsLeftOutChanged: {
        stopRings();
        place();
    }

    readonly property bool isShown: effect.side !== undefined
    readonly property int side: isShown ? effect.side : 2
    readonly property real idle: isShown ? effect.idle : 0
    readonly property real largestScale: Math.max(...scales)
    // In which KWin draws this window; Plasma 5 the same on all displays.
    readonly property real scale: hasManyScales ? scaleHere : largestScale
    readonly property bool hasManyScales: !isPlasma5 && Math.min(...scales) !== largestScale
    property real scaleHere: 1 // of the display with the pointer, where there are many
    readonly property bool isPlasma5: Workspace.activeWindow === undefined
    readonly property var scales: Array.from(isPlasma5 ? Qt.application.screens : Workspace.screens,
        screen => screen.devicePixelRatio)

    // KWin lets every press through, and the effect finds this window by its title.
    property bool outputOnly: true
    title: "vantrel-mark"
    flags: Qt.BypassWindowManagerHint | Qt.FramelessWindowHint | Qt.WindowTransparentForInput
        | Qt.WindowDoesNotAcceptFocus
    color: "transparent"

    Image {
        width: mark.side
        height: mark.side
        // Anew after an overview: else a KWin without OpenGL shows the window empty.
        source: mark.isShown && !mark.isLeftOut ? mark.pictureFor(mark.scale) : ""
        visible: !mark.resting
        cache: false
        smooth: false
    }

    function pictureFor(scale) {
        const fitting = effect.pictures.find(picture => picture.scale >= scale);
        return (fitting || effect.pictures[effect.pictures.length - 1]).url;
    }

    function follow() {
        const {x, y} = Workspace.cursorPos;
        setGeometry(x - side / 2, y - side / 2, side, side);
        const display = hasManyScales ? Workspace.screenAt(Workspace.cursorPos) : null;
        if (display)
            scaleHere = display.devicePixelRatio;
    }

    Connections {
        target: Workspace
        enabled: mark.isShown
        function onCursorPosChanged() {
            mark.follow();
            // By this signal KWin hears of it. Qt sends it a turn of the event loop later, and a frame may
            // be drawn before that.
            mark.xChanged(mark.x);
            mark.noteActivity();
        }
    }

    function show(message) {
        const wanted = JSON.parse(message);
        if (!isSound(wanted)) {
            console.warn("vantrel: not to be shown");
            return;
        }
        effect = wanted;
        if (!isShown || effect.rings.length === 0)
            stopRings();
        rest.stop();
        place();
        noteActivity();
    }

    function place() {
        // In its place already, since KWin may not move it in the moment in which it appears. Also at
        // rest, when presses are still to be heard of.
        follow();
        visible = isShown && !isLeftOut;
    }

    // What is handed over

    function isSound(message) {
        const isWithin = (value, low, high) => typeof value === "number" && value >= low && value <= high;
        const isEach = (list, most, isGood) => Array.isArray(list) && list.length <= most && list.every(isGood);
        const isPicture = ({scale, url}) => isWithin(scale, 0.5, 8) && typeof url === "string"
            && url.startsWith("data:image/png;base64,");
        const isRing = ring => isWithin(ring.button, 1, 2) && isWithin(ring.duration, 0.01, 60)
            && [ring.lineWidth, ring.start, ring.end].every(size => isWithin(size, 0, 4096))
            && isWithin(ring.opacity, 0, 1) && /^#[0-9a-f]{6}$/.test(ring.color);
        return Object.keys(message).length === 0
            || isWithin(message.side, 1, 4096) && message.pictures.length > 0
            && isEach(message.pictures, 16, isPicture) && isEach(message.rings, 16, isRing)
            && isWithin(message.idle, 0, 86400);
    }

    // Rest

    function noteActivity() {
        lastActivity = Date.now();
        resting = false;
        if (idle > 0 && !rest.running) {
            rest.interval = idle * 1000;
            rest.start();
        }
    }

    // Set again when it is over, not for every motion.
    Timer {
        id: rest
        onTriggered: {
            const left = mark.lastActivity + mark.idle * 1000 - Date.now();
            if (left > 0) {
                interval = left;
                start();
            } else {
                mark.resting = true;
            }
        }
    }

    // Presses

    // Set by the effect: the bits of what was pressed, x, y, and a number that is another each time.
    property string pressed
    onPressedChanged: {
        if (!isShown)
            return;
        noteActivity();
        const [buttons, x, y] = pressed.split(" ").map(Number);
        const ring = effect.rings.find(({button}) => (button & buttons) !== 0);
        if (ring)
            spareRing().play(ring, x, y);
    }

    function spareRing() {
        const at = rings.findIndex(ring => !ring.visible);
        const ring = at >= 0 ? rings.splice(at, 1)[0]
            : rings.length < mostRings ? ringWindow.createObject(mark) : rings.shift();
        rings.push(ring);
        return ring;
    }

    function stopRings() {
        rings.forEach(ring => ring.stop());
    }

    Component {
        id: ringWindow

        Window {
            id: play

            property var ring: ({lineWidth: 0, color: "black"})
            property real progress: 0
            readonly property real outline: ring.start + (ring.end - ring.start) * progress + ring.lineWidth

            property bool outputOnly: mark.outputOnly
            title: "vantrel-ring"
            flags: Qt.BypassWindowManagerHint | Qt.FramelessWindowHint | Qt.WindowTransparentForInput
                | Qt.WindowDoesNotAcceptFocus
            color: "transparent"

            function play(wanted, x, y) {
                const half = Math.ceil((Math.max(wanted.start, wanted.end) + wanted.lineWidth) / 8 + 0.25) * 4;
                animation.stop();
                ring = wanted;
                setGeometry(x - half, y - half, 2 * half, 2 * half);
                visible = true;
                animation.start();
            }

            function stop() {
                animation.stop();
                visible = false;
            }

            Rectangle {
                x: (play.width - width) / 2
                y: x
                width: play.outline
                height: width
                radius: width / 2
                antialiasing: true
                color: "transparent"
                border { width: play.ring.lineWidth; color: play.ring.color; pixelAligned: false }
                opacity: play.ring.opacity * (1 - play.progress)
            }

            NumberAnimation {
                id: animation
                target: play
                property: "progress"
                from: 0
                to: 1
                duration: play.ring.duration * 1000
                onFinished: play.visible = false
            }
        }
    }

    // Other windows

    // KWin's side of this window.
    property var managed: null

    Connections {
        target: Workspace
        ignoreUnknownSignals: true
        // In Plasma 6, and in Plasma 5.
        function onWindowAdded(window) { mark.meet(window); }
        function onClientAdded(window) { mark.meet(window); }
    }

    function meet(window) {
        const ours = /^vantrel-(mark|ring)(?= <\d+>$|$)/.exec(window.caption);
        if (ours) {
            leaveOut(window);
            if (ours[0] === title)
                managed = window;
            return;
        }
        // Without the effect, what opens later might cover it. No script of Plasma 5 raises windows.
        if (managed && Workspace.raiseWindow)
            Workspace.raiseWindow(managed);
        if (isPanel(window))
            meetPanel(window);
    }

    function leaveOut(window) {
        for (const flag of ["skipTaskbar", "skipPager", "skipSwitcher"])
            window[flag] = true;
    }

    // The program's panel

    // Of the program's own windows it alone has a fixed size. As an X window it says what it is.
    function isPanel(window) {
        return String(window.resourceClass) === "vantrel"
            && (window.utility || window.normalWindow && !window.resizeable && !window.transient
                && /^Vantrel( <\d+>)?$/.test(window.caption));
    }

    // It belongs where the item was clicked, of which the program does not know where that is.
    function meetPanel(window) {
        leaveOut(window);
        window.keepAbove = true;
        Workspace[isPlasma5 ? "activeClient" : "activeWindow"] = window;
        const at = Qt.point(Workspace.cursorPos.x, Workspace.cursorPos.y);
        const place = () => placePanel(window, at);
        // The program may think that it belongs elsewhere.
        window.frameGeometryChanged.connect(place);
        place();
    }

    function placePanel(window, at) {
        const gap = 8;
        const maximizeArea = 2;
        const area = Workspace.clientArea(maximizeArea, Workspace.screenAt ? Workspace.screenAt(at) : at,
            Workspace.currentDesktop);
        const {width, height} = window.frameGeometry;
        const within = (start, length, low, size) => Math.max(low, Math.min(start, low + size - length));
        const isRoomBelow = at.y + gap + height <= area.y + area.height;
        const place = Qt.rect(
            within(at.x - Math.round(width / 2), width, area.x, area.width),
            within(isRoomBelow ? at.y + gap : at.y - gap - height, height, area.y, area.height),
            width, height);
        if (place !== window.frameGeometry)
            window.frameGeometry = place;
    }

    // The program

    DBusCall {
        id: next
        service: "org.vantrel.KWinMarks1"
        path: "/org/vantrel/KWinMarks1"
        dbusInterface: "org.vantrel.KWinMarks1"
        method: "Next"
        onFinished: function (answer) {
            // With the same number it was answered only so that the bus does not let it expire.
            if (answer[0] !== mark.serial) {
                mark.serial = answer[0];
                mark.show(answer[1]);
            }
            mark.ask();
        }
        onFailed: mark.end()
    }
    // A bare "arguments" in a function is the function's own.
    function ask() {
        next.arguments = [serial];
        next.call();
    }

    DBusCall {
        id: setScales
        service: next.service
        path: next.path
        dbusInterface: next.dbusInterface
        method: "SetScales"
    }
    onScalesChanged: tellScales()
    function tellScales() {
        setScales.arguments = [scales];
        setScales.call();
    }

    Component.onCompleted: ask()

    // The end

    function end() {
        show("{}");
        for (const call of [unloadEffect, freeHighlight, freeLaser, unloadScript])
            call.call();
    }

    DBusCall {
        id: unloadEffect
        service: "org.kde.KWin"
        path: "/Effects"
        dbusInterface: "org.kde.kwin.Effects"
        method: "unloadEffect"
        arguments: ["vantrel-presses"]
    }
    DBusCall {
        id: unloadScript
        service: "org.kde.KWin"
        path: "/Scripting"
        dbusInterface: "org.kde.kwin.Scripting"
        method: "unloadScript"
        arguments: ["vantrel"]
    }
    // The desktop keeps the keys of a program that is gone.
    component FreeKey: DBusCall {
        service: "org.kde.kglobalaccel"
        path: "/kglobalaccel"
        dbusInterface: "org.kde.KGlobalAccel"
        method: "unregister"
    }
    FreeKey { id: freeHighlight; arguments: ["vantrel", "toggle-highlight"] }
    FreeKey { id: freeLaser; arguments: ["vantrel", "toggle-laser"] }
}
