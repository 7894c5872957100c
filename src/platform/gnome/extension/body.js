
const Name = 'org.vantrel.Marks1';
const Path = '/org/vantrel/Marks1';
// Raised with every change that a program must know of.
const Version = 2;

const Interface = `
<node>
  <interface name="${Name}">
    <!-- Shows this around the pointer until the next call, Clear, or the caller's end. Sizes are in
         points, times in seconds, colours red, green, blue and alpha from 0 to 1.
         mark, a(dda(ddddd)): discs, the lowest first: diameter; width of the line, whose outer edge has
           the diameter, 0 for a filled disc; stops: offset from the centre, 0 to 1, and colour.
         rings, a(udddddddd): one for a mouse button, 1 left, 3 right: duration, width of the line,
           diameter to its middle at the start and at the end, opacity at the start, red, green, blue.
         idle, d: the pointer's rest after which the mark hides; 0 for never. -->
    <method name="Show"><arg name="effect" type="a{sv}" direction="in"/></method>
    <method name="Clear"/>
    <!-- All shortcuts of the caller, by numbers of its choice, in place of earlier ones. Answers the
         numbers of those that cannot be had. -->
    <method name="Grab">
      <arg name="accelerators" type="a(us)" direction="in"/>
      <arg name="refused" type="au" direction="out"/>
    </method>
    <!-- Whether the window that has the keyboard now gets every key combination, as long as it has the
         keyboard, and nobody else any. -->
    <method name="LeaveKeys"><arg name="left" type="b" direction="in"/></method>
    <!-- Sent to the caller of Grab alone. -->
    <signal name="Pressed"><arg name="number" type="u"/></signal>
    <!-- An item in the top bar: its picture as a PNG, what screen readers say of it, and the entries of
         its menu: a title, empty for a dividing line, and 0 for no choice, 1 for one of several, 2 for
         the chosen one. Without a picture there is none. -->
    <method name="SetItem">
      <arg name="picture" type="ay" direction="in"/>
      <arg name="description" type="s" direction="in"/>
      <arg name="entries" type="a(su)" direction="in"/>
    </method>
    <!-- These are sent to the caller of SetItem alone: a click on the item, with its place on the
         desktop as x, y, width and height, and the number of an entry from 0. -->
    <signal name="ItemClicked"><arg name="place" type="(iiii)"/></signal>
    <signal name="EntryChosen"><arg name="number" type="u"/></signal>
    <property name="Version" type="u" access="read"/>
  </interface>
</node>`;

const MostRings = 8;

// What is handed over

const isWithin = (low, high) => value => value >= low && value <= high; // not for NaN
const isShare = isWithin(0, 1);
const isSize = isWithin(0, 1024);
const isDuration = isWithin(0.001, 60); // the shell counts milliseconds, and none would be for ever
const isEach = (values, isSound, most) => values.length <= most && values.every(isSound);

function isDisc([diameter, width, stops]) {
    return isSize(diameter) && isWithin(0, diameter)(width) && stops.length > 0 &&
        isEach(stops, stop => stop.every(isShare), 16) &&
        stops.every(([offset], index) => index === 0 || offset >= stops[index - 1][0]);
}

function isRing([button, duration, width, start, end, ...color]) {
    return isWithin(1, 16)(button) && isDuration(duration) &&
        [width, start, end, width + Math.max(start, end)].every(isSize) && color.every(isShare);
}

const Parts = {
    mark: {type: 'a(dda(ddddd))', otherwise: [], isSound: discs => isEach(discs, isDisc, 16)},
    rings: {type: 'a(udddddddd)', otherwise: [], isSound: rings => isEach(rings, isRing, 16)},
    idle: {type: 'd', otherwise: 0, isSound: isWithin(0, 86400)},
};

// Null for what cannot be shown.
function readEffect(options) {
    const effect = {};
    for (const name of Object.keys(options)) {
        if (!Object.hasOwn(Parts, name) || options[name].get_type_string() !== Parts[name].type)
            return null;
    }
    for (const [name, {otherwise, isSound}] of Object.entries(Parts)) {
        effect[name] = options[name]?.recursiveUnpack() ?? otherwise;
        if (!isSound(effect[name]))
            return null;
    }
    return effect;
}

// By the place of the key: two digits, or the shell takes it for a name.
const Accelerator = /^(<(Control|Alt|Shift|Super)>){0,4}0x[0-9a-f]{2}$/;

function areAccelerators(list) {
    return isEach(list, ([, accelerator]) => Accelerator.test(accelerator), 16) &&
        new Set(list.map(([number]) => number)).size === list.length;
}

const PngStart = [0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a];

// A PNG, whose width and height are four bytes each; an empty one is none.
function isPicture(bytes) {
    const sizeAt = index => new DataView(bytes.buffer, bytes.byteOffset).getUint32(index);
    return bytes.length === 0 || (bytes.length >= 24 && bytes.length <= 65536 &&
        PngStart.every((byte, index) => bytes[index] === byte) &&
        [16, 20].every(index => isWithin(1, 256)(sizeAt(index))));
}

function isItem(picture, description, entries) {
    return isPicture(picture) && description.length <= 256 &&
        isEach(entries, ([title, choice]) => title.length <= 256 && choice <= 2, 64);
}

// The shell

// GNOME 48 moved these to other objects.
const letFullScreenWindowsBypass = allowed => {
    if (global.compositor?.disable_unredirect)
        allowed ? global.compositor.enable_unredirect() : global.compositor.disable_unredirect();
    else
        allowed ? Meta.enable_unredirect_for_display(global.display)
            : Meta.disable_unredirect_for_display(global.display);
};
const cursorTracker = () => global.backend.get_cursor_tracker?.() ??
    Meta.CursorTracker.get_for_display(global.display);
const idleMonitor = () => global.backend.get_core_idle_monitor();
const seconds = () => GLib.get_monotonic_time() / 1e6;
const theme = () => St.ThemeContext.get_for_stage(global.stage);
// More than 1 where the stage is laid out in device pixels.
const pointScale = () => theme().scale_factor;
// Its number, negative for none.
const displayAt = (x, y) => Main.layoutManager.monitors.findIndex(display =>
    x >= display.x && x < display.x + display.width &&
    y >= display.y && y < display.y + display.height);
function scaleAt(x, y) {
    const number = displayAt(x, y);
    return number < 0 ? 1 : global.display.get_monitor_scale(number);
}
const haveDisplaysScale = scale => Main.layoutManager.monitors.every((_display, number) =>
    global.display.get_monitor_scale(number) === scale);

// The name of an extension whose files are gone, which the shell would keep in its settings. Later, for
// the shell may be in the midst of switching it off.
function forgetRemoved(uuid) {
    if (Main.extensionManager.lookup(uuid)?.dir.query_exists(null) !== false)
        return;
    GLib.idle_add(GLib.PRIORITY_DEFAULT, () => {
        for (const list of ['enabled-extensions', 'disabled-extensions']) {
            const names = global.settings.get_strv(list);
            if (names.includes(uuid))
                global.settings.set_strv(list, names.filter(name => name !== uuid));
        }
        return GLib.SOURCE_REMOVE;
    });
}

// Shows what it draws around a point of the stage. Used again and again: what pictures have is freed
// late.
class Picture {
    constructor(parent) {
        this.actor = new St.DrawingArea({
            reactive: false, can_focus: false, track_hover: false, visible: false,
        });
        this.actor.connect('repaint', () => {
            const context = this.actor.get_context();
            const [width, height] = this.actor.get_surface_size();
            context.translate(width / 2, height / 2);
            context.scale(pointScale(), pointScale());
            this._draw(context);
            context.$dispose();
        });
        parent.add_child(this.actor);
    }

    set(diameter, draw) {
        this._draw = draw;
        // Whose half is a whole number of pixels at every quarter of a scale.
        this._side = Math.ceil(diameter * pointScale() / 8 + 0.25) * 8;
        this.actor.set_size(this._side, this._side);
        this.actor.queue_repaint();
    }

    // Whether that is another place than before, to the pixel: that brings a frame. By a translation,
    // for a new position would have everything drawn anew.
    moveTo(x, y) {
        // A resource has whole pixels for each unit of the stage, a display maybe fewer.
        const scale = this.actor.get_resource_scale();
        const pixels = scale > 1 ? scaleAt(x, y) : 1;
        this._setExact((scale === 1 || haveDisplaysScale(scale)) && !Main.magnifier?.isActive());
        const left = Math.round(x * pixels) / pixels - this._side / 2;
        const top = Math.round(y * pixels) / pixels - this._side / 2;
        if (left === this.actor.translation_x && top === this.actor.translation_y)
            return false;
        this.actor.set_translation(left, top, 0);
        return true;
    }

    // Whether each pixel of the picture is one of the display's: to read one for each is cheaper than the
    // four around.
    _setExact(isExact) {
        if (this._isExact === isExact)
            return;
        this._isExact = isExact;
        const {NEAREST, LINEAR} = Clutter.ScalingFilter;
        const filter = isExact ? NEAREST : LINEAR;
        this.actor.set_content_scaling_filters(filter, filter);
    }
}

function drawDisc(context, [diameter, width, stops]) {
    if (diameter <= width)
        return;
    // A ring is drawn in every frame, and a gradient is freed late.
    if (stops.length === 1) {
        const [, ...color] = stops[0];
        context.setSourceRGBA(...color);
    } else {
        const gradient = new Cairo.RadialGradient(0, 0, 0, 0, 0, diameter / 2);
        for (const stop of stops)
            gradient.addColorStopRGBA(...stop);
        context.setSource(gradient);
    }
    context.newPath();
    context.arc(0, 0, (diameter - width) / 2, 0, 2 * Math.PI);
    if (width > 0) {
        context.setLineWidth(width);
        context.stroke();
    } else {
        context.fill();
    }
}

// Keeps an actor above its siblings, menus and dialogs among them, which raise themselves when they
// open. One that comes back each time is left above until it has been quiet for a while.
class TopPlace {
    static answersAllowed = 4; // times
    static answerTime = 1; // seconds; what comes later is no answer
    static forgivingTime = 10;

    constructor(actor) {
        this._actor = actor;
        this._rivals = new WeakMap();
        this._parent = actor.get_parent();
        this._signal = this._parent.connect('notify::last-child', () => this._take());
    }

    destroy() {
        this._parent.disconnect(this._signal);
    }

    _take() {
        const rival = this._parent.get_last_child();
        if (this._taking || !rival || rival === this._actor || !this._mayRaise(rival))
            return;
        this._taking = true;
        this._parent.set_child_above_sibling(this._actor, null);
        this._taking = false;
    }

    _mayRaise(actor) {
        const now = seconds();
        const fresh = {came: -Infinity, raised: -Infinity, answers: 0};
        let rival = this._rivals.get(actor) ?? fresh;
        if (now - rival.came > TopPlace.forgivingTime)
            rival = fresh;
        this._rivals.set(actor, rival);
        rival.came = now;
        if (rival.answers < TopPlace.answersAllowed)
            rival.answers = now - rival.raised <= TopPlace.answerTime ? rival.answers + 1 : 0;
        if (rival.answers >= TopPlace.answersAllowed)
            return false;
        rival.raised = now;
        return true;
    }
}

// What plays at a press.
class Ring {
    constructor(parent, ended) {
        this._picture = new Picture(parent);
        this._timeline = new Clutter.Timeline({actor: this._picture.actor, duration: 1});
        this._timeline.connect('new-frame', () => this._picture.actor.queue_repaint());
        this._timeline.connect('completed', () => ended(this));
    }

    play([, duration, width, start, end, opacity, ...color], x, y) {
        this._picture.set(Math.max(start, end) + width, context => {
            const progress = this._timeline.get_progress();
            const diameter = start + (end - start) * progress + width;
            drawDisc(context, [diameter, width, [[0, ...color, opacity * (1 - progress)]]]);
        });
        this._picture.moveTo(x, y);
        this._picture.actor.visible = true;
        this._timeline.set_duration(duration * 1000);
        this._timeline.rewind();
        this._timeline.start();
    }

    stop() {
        this._timeline.stop();
        this._picture.actor.visible = false;
    }
}

// What is shown around the pointer, and the rings of presses.
class Overlay {
    constructor() {
        this._layer = new Clutter.Actor({name: 'vantrel', reactive: false});
        Main.layoutManager.uiGroup.add_child(this._layer);
        this._topPlace = new TopPlace(this._layer);
        this._tracker = cursorTracker();
        this._monitor = idleMonitor();
        this._mark = new Picture(this._layer);
        this._rings = []; // that play, the oldest first
        this._spareRings = [];
        this._visible = false;
        this._signals = [
            [this._tracker, 'position-invalidated', () => this._motion()],
            [global.stage, 'prepare-frame', () => this._frame()],
            [theme(), 'notify::scale-factor', () => this._draw()],
            // Where a display's pixels lie is known once the mark has come to it.
            [this._mark.actor, 'resource-scale-changed', () => this._place()],
        ].map(([object, name, handler]) => [object, object.connect(name, handler)]);
        this._tracker.track_position?.();
    }

    destroy() {
        this._setVisible(false);
        for (const [object, id] of this._signals)
            object.disconnect(id);
        this._tracker.untrack_position?.();
        this._stopWatching();
        this._stopTimer();
        this._dropRings(0);
        this._topPlace.destroy();
        this._layer.destroy();
    }

    show(effect) {
        this._effect = effect;
        if (effect.rings.length === 0)
            this._dropRings(0);
        this._draw();
        this._stopWatching();
        if (effect.rings.length > 0 || effect.idle > 0)
            this._watch();
        this._stopTimer();
        this._active();
    }

    _draw() {
        const {mark} = this._effect;
        this._mark.set(Math.max(0, ...mark.map(([diameter]) => diameter)),
            context => mark.forEach(disc => drawDisc(context, disc)));
        this._waiting = false;
        this._place();
    }

    _setVisible(visible) {
        if (this._visible === visible)
            return;
        this._visible = visible;
        this._mark.actor.visible = visible;
        letFullScreenWindowsBypass(!visible);
    }

    _place() {
        const [{x, y}] = this._tracker.get_pointer();
        return this._mark.moveTo(x, y);
    }

    // For every motion, of which a frame may have many: the first asks for the frame.
    _motion() {
        if (this._waiting)
            return;
        this._waiting = this._place();
        this._active();
    }

    // The pointer may be elsewhere by now than when the shell heard of its motion, or have moved without
    // that the shell has heard of it.
    _frame() {
        this._waiting = false;
        this._place();
    }

    _active() {
        this._lastActivity = seconds();
        this._setVisible(true);
        if (this._effect.idle > 0 && !this._timer)
            this._startTimer(this._effect.idle);
    }

    // Set again when it is over, not for every motion.
    _startTimer(delay) {
        this._timer = GLib.timeout_add(GLib.PRIORITY_DEFAULT, Math.ceil(delay * 1000), () => {
            this._timer = 0;
            const left = this._lastActivity + this._effect.idle - seconds();
            if (left > 0)
                this._startTimer(left);
            else
                this._setVisible(false);
            return GLib.SOURCE_REMOVE;
        });
    }

    _stopTimer() {
        if (this._timer)
            GLib.source_remove(this._timer);
        this._timer = 0;
    }

    // Presses in windows reach neither the stage nor filters of events. The idle monitor hears of every
    // event before it is delivered, and tells of one for each watch.
    _watch() {
        this._watchId = this._monitor.add_user_active_watch(() => {
            this._watch();
            const event = Clutter.get_current_event();
            if (event?.type() === Clutter.EventType.BUTTON_PRESS)
                this._press(event.get_button(), ...event.get_coords());
        });
    }

    _stopWatching() {
        if (this._watchId)
            this._monitor.remove_watch(this._watchId);
        this._watchId = 0;
    }

    _press(button, x, y) {
        if (button !== 1 && button !== 3)
            return;
        this._active();
        const ring = this._effect.rings.find(([of]) => of === button);
        if (!ring)
            return;
        this._dropRings(MostRings - 1);
        const playing = this._spareRings.pop() ?? new Ring(this._layer, ended => this._drop(ended));
        playing.play(ring, x, y);
        this._rings.push(playing);
    }

    // The oldest ones, until so many are left.
    _dropRings(left) {
        while (this._rings.length > left)
            this._drop(this._rings[0]);
    }

    _drop(ring) {
        ring.stop();
        this._rings.splice(this._rings.indexOf(ring), 1);
        this._spareRings.push(ring);
    }
}

class Shortcuts {
    constructor(pressed) {
        this._numbers = new Map(); // by the shell's own
        this._signal = global.display.connect('accelerator-activated', (_display, action) => {
            if (this._numbers.has(action))
                pressed(this._numbers.get(action));
        });
    }

    destroy() {
        this.grab([]);
        this.leave(false);
        global.display.disconnect(this._signal);
    }

    // The shell asks of each combination whether it is to be carried out.
    leave(left) {
        if (this._filter)
            global.window_manager.disconnect(this._filter);
        this._filter = 0;
        const window = global.display.focus_window;
        if (left && window)
            this._filter = global.window_manager.connect('filter-keybinding',
                () => global.display.focus_window === window);
    }

    // Returns the numbers of those that were refused.
    grab(accelerators) {
        for (const action of this._numbers.keys()) {
            this._allowIn(action, Shell.ActionMode.NONE);
            global.display.ungrab_accelerator(action);
        }
        this._numbers.clear();
        const refused = [];
        for (const [number, accelerator] of accelerators) {
            const action = global.display.grab_accelerator(accelerator,
                Meta.KeyBindingFlags.IGNORE_AUTOREPEAT);
            if (action === Meta.KeyBindingAction.NONE) {
                refused.push(number);
            } else {
                this._allowIn(action, Shell.ActionMode.ALL);
                this._numbers.set(action, number);
            }
        }
        return refused;
    }

    _allowIn(action, modes) {
        Main.wm.allowKeybinding(Meta.external_binding_name_for_action(action), modes);
    }
}

// The program's item in the top bar.
class Item {
    constructor(clicked, chosen) {
        this._clicked = clicked;
        this._chosen = chosen;
        this._button = new PanelMenu.Button(0.5, '', true);
        this._icon = new St.Icon({style_class: 'system-status-icon'});
        this._button.add_child(this._icon);
        // Before the menu hears of it, which would open for all of this.
        this._button.connect('captured-event', (_button, event) => this._answer(event));
        this._menu = new PopupMenu.PopupMenu(this._button, 0.5, St.Side.TOP);
        this._menu.actor.hide();
        Main.layoutManager.uiGroup.add_child(this._menu.actor);
        Main.panel.menuManager.addMenu(this._menu);
        Main.panel.addToStatusArea('vantrel', this._button);
        // The empty one that a button has counts as open, and the panel would change from it to this one
        // as soon as the pointer comes to the button.
        Main.panel.menuManager.removeMenu(this._button.menu);
    }

    destroy() {
        this._menu.destroy();
        this._button.destroy();
    }

    // The menu for its key and every button but the first; the program for what else means the item.
    _answer(event) {
        const type = event.type();
        const isKey = type === Clutter.EventType.KEY_PRESS;
        const key = isKey ? event.get_key_symbol() : 0;
        const isPress = type === Clutter.EventType.BUTTON_PRESS;
        const isMenu = key === Clutter.KEY_Menu || (isPress && event.get_button() !== 1);
        if (isMenu)
            this._menu.toggle();
        else if (isPress || type === Clutter.EventType.TOUCH_BEGIN || key === Clutter.KEY_Return ||
            key === Clutter.KEY_space)
            this._clicked(this.place());
        else
            return Clutter.EVENT_PROPAGATE;
        return Clutter.EVENT_STOP;
    }

    place() {
        const [x, y] = this._button.get_transformed_position();
        const [width, height] = this._button.get_transformed_size();
        return [x, y, width, height].map(Math.round);
    }

    show(picture, description, entries) {
        this._icon.gicon = Gio.BytesIcon.new(GLib.Bytes.new(picture));
        this._button.accessible_name = description;
        this._menu.removeAll();
        entries.forEach(([title, choice], number) => {
            if (title === '') {
                this._menu.addMenuItem(new PopupMenu.PopupSeparatorMenuItem());
                return;
            }
            const entry = new PopupMenu.PopupMenuItem(title);
            if (choice > 0)
                entry.setOrnament(choice === 2 ? PopupMenu.Ornament.DOT : PopupMenu.Ornament.NONE);
            entry.connect('activate', () => this._chosen(number));
            this._menu.addMenuItem(entry);
        });
    }
}

// The program's panel opens at the item, or at the pointer where there is none: under Wayland a program
// cannot place its windows.
class Panel {
    constructor(itemPlace) {
        this._itemPlace = itemPlace;
        this._signal = global.window_manager.connect('map', (_manager, {meta_window: window}) => {
            if (Panel._isPanel(window))
                this._open(window);
        });
    }

    destroy() {
        global.window_manager.disconnect(this._signal);
        this._window?.disconnectObject(this);
    }

    // Of the program's own windows it alone has a fixed size.
    static _isPanel(window) {
        return window.get_wm_class() === 'vantrel' && !window.allows_resize() &&
            !window.get_transient_for() &&
            window.get_client_type() === Meta.WindowClientType.WAYLAND;
    }

    _open(window) {
        const [pointerX, pointerY] = global.get_pointer();
        const at = this._itemPlace() ?? [pointerX, pointerY, 0, 0];
        const place = () => this._place(window, at);
        this._window = window;
        window.connectObject('size-changed', place, 'unmanaged', () => {
            if (this._window === window)
                this._window = null;
        }, this);
        window.make_above();
        place();
        window.activate(global.display.get_current_time_roundtrip());
    }

    _place(window, [x, y, width, height]) {
        const area = Main.layoutManager.getWorkAreaForMonitor(Math.max(0, displayAt(x, y)));
        const frame = window.get_frame_rect();
        const gap = 4 * pointScale();
        const within = (start, length, low, size) => Math.max(low, Math.min(start, low + size - length));
        const below = y + height + gap;
        const isRoomBelow = below + frame.height <= area.y + area.height;
        window.move_frame(true,
            within(Math.round(x + (width - frame.width) / 2), frame.width, area.x, area.width),
            within(isRoomBelow ? below : y - gap - frame.height, frame.height, area.y, area.height));
    }
}

// Serves one program at a time. All that is shown and grabbed is that program's, and ends with it.
class Service {
    constructor(uuid) {
        this._uuid = uuid;
        this._bus = Gio.DBus.session;
        this._shortcuts = new Shortcuts(number => this._tell('Pressed', '(u)', number));
        this._panel = new Panel(() => this._item?.place());
        this._object = Gio.DBusExportedObject.wrapJSObject(Interface, this);
        this._object.export(this._bus, Path);
        this._name = Gio.bus_own_name_on_connection(this._bus, Name, Gio.BusNameOwnerFlags.NONE, null, null);
    }

    destroy() {
        Gio.bus_unown_name(this._name);
        this._object.unexport();
        this._forget();
        this._panel.destroy();
        this._shortcuts.destroy();
    }

    get Version() {
        return Version;
    }

    ShowAsync([options], invocation) {
        const effect = readEffect(options);
        this._serve(invocation, effect !== null, () => {
            try {
                this._overlay ??= new Overlay();
                this._overlay.show(effect);
            } catch (error) {
                this._clear();
                throw error;
            }
            return null;
        });
    }

    ClearAsync(_nothing, invocation) {
        this._serve(invocation, true, () => {
            this._clear();
            return null;
        });
    }

    GrabAsync([accelerators], invocation) {
        this._serve(invocation, areAccelerators(accelerators), () =>
            new GLib.Variant('(au)', [this._shortcuts.grab(accelerators)]));
    }

    LeaveKeysAsync([left], invocation) {
        this._serve(invocation, true, () => {
            this._shortcuts.leave(left);
            return null;
        });
    }

    SetItemAsync([picture, description, entries], invocation) {
        this._serve(invocation, isItem(picture, description, entries), () => {
            if (picture.length === 0) {
                this._removeItem();
            } else {
                this._item ??= new Item(place => this._tell('ItemClicked', '((iiii))', place),
                    number => this._tell('EntryChosen', '(u)', number));
                this._item.show(picture, description, entries);
            }
            return null;
        });
    }

    _tell(signal, type, value) {
        this._bus.emit_signal(this._client, Path, Name, signal, new GLib.Variant(type, [value]));
    }

    // Answers with what the action returns.
    _serve(invocation, isSound, action) {
        const sender = invocation.get_sender();
        if (!isSound) {
            invocation.return_dbus_error('org.freedesktop.DBus.Error.InvalidArgs', 'out of range');
        } else if (this._client && this._client !== sender) {
            invocation.return_dbus_error(`${Name}.Error.Busy`, 'another program is served');
        } else {
            this._remember(sender);
            try {
                invocation.return_value(action());
            } catch (error) {
                invocation.return_dbus_error('org.freedesktop.DBus.Error.Failed', `${error}`);
            }
        }
    }

    _remember(client) {
        if (this._client === client)
            return;
        this._client = client;
        this._watch = Gio.bus_watch_name_on_connection(this._bus, client, Gio.BusNameWatcherFlags.NONE,
            null, () => this._forget());
    }

    _forget() {
        this._clear();
        this._removeItem();
        this._shortcuts.grab([]);
        this._shortcuts.leave(false);
        if (this._client)
            Gio.bus_unwatch_name(this._watch);
        this._client = null;
        forgetRemoved(this._uuid);
    }

    _removeItem() {
        this._item?.destroy();
        this._item = null;
    }

    _clear() {
        this._overlay?.destroy();
        this._overlay = null;
    }
}
