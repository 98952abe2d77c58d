// SPDX-License-Identifier: MIT
// Lattica's bridge inside GNOME Shell: a small D-Bus interface on the session bus that lists monitors and
// windows and moves windows. Written without module syntax so that both entry files can use it: the
// legacy one (GNOME 43-44) through imports, the ES module one (GNOME 45 and later) through a copy that
// the install step ends with an export. Shell and Mutter objects come in through `shell`, so this file
// imports nothing itself.

var BRIDGE_PATH = '/app/lattica/Shell';
// Only the process that owns Lattica's bus name is answered (a ping excepted): other programs cannot
// read or move windows through this interface.
var LATTICA_BUS_NAME = 'app.lattica.Lattica';

var BRIDGE_INTERFACE = `
<node>
  <interface name="app.lattica.Shell">
    <method name="Ping"/>
    <method name="Monitors"><arg type="s" direction="out" name="json"/></method>
    <method name="Windows"><arg type="s" direction="out" name="json"/></method>
    <method name="FocusedWindow"><arg type="t" direction="out" name="id"/></method>
    <method name="MoveToMonitor">
      <arg type="t" direction="in" name="id"/><arg type="i" direction="in" name="monitor"/>
      <arg type="s" direction="out" name="json"/>
    </method>
    <method name="MoveResize">
      <arg type="t" direction="in" name="id"/>
      <arg type="i" direction="in" name="x"/><arg type="i" direction="in" name="y"/>
      <arg type="i" direction="in" name="width"/><arg type="i" direction="in" name="height"/>
      <arg type="s" direction="out" name="json"/>
    </method>
    <method name="SetMaximized">
      <arg type="t" direction="in" name="id"/><arg type="b" direction="in" name="maximized"/>
      <arg type="s" direction="out" name="json"/>
    </method>
    <method name="Unminimize"><arg type="t" direction="in" name="id"/><arg type="s" direction="out" name="json"/></method>
    <method name="Activate"><arg type="t" direction="in" name="id"/><arg type="s" direction="out" name="json"/></method>
    <method name="ActivateWhenShown">
      <arg type="u" direction="in" name="pid"/><arg type="s" direction="in" name="title"/>
      <arg type="s" direction="out" name="json"/>
    </method>
    <method name="CaptureMonitor">
      <arg type="i" direction="in" name="monitor"/><arg type="ay" direction="out" name="png"/>
    </method>
    <method name="GrabAccelerator">
      <arg type="s" direction="in" name="accelerator"/><arg type="u" direction="out" name="action"/>
    </method>
    <method name="UngrabAccelerator"><arg type="u" direction="in" name="action"/></method>
    <method name="AcceleratorFree">
      <arg type="s" direction="in" name="accelerator"/><arg type="b" direction="out" name="free"/>
    </method>
    <signal name="AcceleratorPressed"><arg type="u" name="action"/></signal>
    <signal name="AcceleratorReleased"><arg type="u" name="action"/></signal>
    <signal name="MonitorsChanged"/>
    <signal name="WindowsChanged"/>
  </interface>
</node>`;

// How often the modifiers are looked at while an accelerator is held: Mutter reports only its press.
var RELEASE_POLL_MS = 8;

// How long a move waits for the window to report its new frame before answering with what it has.
var SETTLE_TIMEOUT_MS = 1000;

// How long ActivateWhenShown waits for the window to appear.
var SHOW_TIMEOUT_MS = 5000;

function frameOf(window) {
    const rect = window.get_frame_rect();
    return {x: rect.x, y: rect.y, width: rect.width, height: rect.height};
}

function sameRect(a, b) {
    return a.x === b.x && a.y === b.y && a.width === b.width && a.height === b.height;
}

function describeWindow(shell, window) {
    const app = shell.tracker.get_window_app(window);
    const workspace = window.get_workspace();
    const active = shell.display.get_workspace_manager().get_active_workspace();
    return {
        id: window.get_id(),
        pid: window.get_pid(),
        title: window.get_title(),
        wmClass: window.get_wm_class(),
        application: app ? app.get_name() : null,
        desktopId: app ? app.get_id() : null,
        frame: frameOf(window),
        monitor: window.get_monitor(),
        layer: window.get_layer(),
        type: window.get_window_type(),
        minimized: window.minimized,
        maximized: window.get_maximized() === shell.Meta.MaximizeFlags.BOTH,
        fullscreen: window.is_fullscreen(),
        above: window.is_above(),
        skipTaskbar: window.is_skip_taskbar(),
        onCurrentWorkspace: window.is_on_all_workspaces() || workspace === active,
        opacity: window.get_compositor_private() ? window.get_compositor_private().get_opacity() / 255 : 1,
        client: window.get_client_type() === shell.Meta.WindowClientType.WAYLAND ? 'wayland' : 'x11',
    };
}

// Whether Mutter has placed the window: until its first drawing it has no frame, and until it is
// stacked its layer is the one past the last.
function isPlaced(shell, window) {
    const frame = window.get_frame_rect();
    return frame.width > 0 && frame.height > 0 && window.get_layer() < shell.Meta.StackLayer.LAST;
}

// The desktop's placed windows, front to back.
function stackedWindows(shell) {
    const windows = shell.getWindowActors()
        .map(actor => actor.get_meta_window())
        .filter(w => w !== null && isPlaced(shell, w));
    return shell.display.sort_windows_by_stacking(windows).reverse();
}

function findWindow(shell, id) {
    return stackedWindows(shell).find(window => window.get_id() === id) || null;
}

function monitorsOf(shell) {
    const count = shell.display.get_n_monitors();
    const primary = shell.display.get_primary_monitor();
    const monitors = [];
    for (let index = 0; index < count; index++) {
        const rect = shell.display.get_monitor_geometry(index);
        monitors.push({
            index,
            x: rect.x, y: rect.y, width: rect.width, height: rect.height,
            scale: shell.display.get_monitor_scale(index),
            primary: index === primary,
        });
    }
    return monitors;
}

// The modifiers an accelerator ("<Control><Alt>0x0b") holds, one group of Clutter mask bits each: a
// group is down when any of its bits is set (Super shows as SUPER or MOD4 depending on the keymap).
function modifierGroupsOf(shell, accelerator) {
    const masks = shell.Clutter.ModifierType;
    const text = accelerator.toLowerCase();
    const groups = [];
    if (/<(control|ctrl|primary)>/.test(text))
        groups.push(masks.CONTROL_MASK);
    if (/<(alt|mod1)>/.test(text))
        groups.push(masks.MOD1_MASK);
    if (/<shift>/.test(text))
        groups.push(masks.SHIFT_MASK);
    if (/<(super|mod4)>/.test(text))
        groups.push(masks.SUPER_MASK | masks.MOD4_MASK);
    return groups;
}

// Signal handlers and a time limit that end together: what a call waits on until its answer.
class Watch {
    constructor(shell) {
        this._shell = shell;
        this._handlers = [];
        this._timeout = 0;
    }

    connect(object, signal, handler) {
        this._handlers.push([object, object.connect(signal, handler)]);
    }

    // Stops the watch and calls `expired` after `ms`, unless the watch has stopped before.
    expireAfter(ms, expired) {
        const GLib = this._shell.GLib;
        this._timeout = GLib.timeout_add(GLib.PRIORITY_DEFAULT, ms, () => {
            this._timeout = 0;
            this.stop();
            expired();
            return GLib.SOURCE_REMOVE;
        });
    }

    stop() {
        for (const [object, handler] of this._handlers)
            object.disconnect(handler);
        this._handlers = [];
        if (this._timeout)
            this._shell.GLib.source_remove(this._timeout);
        this._timeout = 0;
    }
}

var LatticaBridge = class LatticaBridge {
    constructor(shell) {
        this._shell = shell;
        this._exported = null;
        this._signals = [];
        this._latticaOwner = null;
        this._watch = 0;
        // Grabbed accelerators by Mutter's action number, and the one whose release is awaited.
        this._accelerators = new Map();
        this._held = null;
        // The signals that close the activated pop-up on a click outside it.
        this._outsideClickWatch = [];
    }

    enable() {
        const shell = this._shell;
        this._exported = shell.Gio.DBusExportedObject.wrapJSObject(BRIDGE_INTERFACE, this);
        this._exported.export(shell.Gio.DBus.session, BRIDGE_PATH);
        this._watch = shell.Gio.bus_watch_name(shell.Gio.BusType.SESSION, LATTICA_BUS_NAME,
            shell.Gio.BusNameWatcherFlags.NONE,
            (connection, name, owner) => {
                this._latticaOwner = owner;
            },
            () => {
                // Keys Lattica grabbed are given back when it goes, even when it ended without asking.
                this._latticaOwner = null;
                this._ungrabAll();
            });
        this._connect(shell.display, 'accelerator-activated', (display, action) => this._onAccelerator(action));
        this._connect(shell.monitorManager, 'monitors-changed', () => this._emit('MonitorsChanged'));
        for (const name of ['window-created', 'restacked', 'notify::focus-window'])
            this._connect(shell.display, name, () => this._emit('WindowsChanged'));
    }

    disable() {
        if (this._watch) {
            this._shell.Gio.bus_unwatch_name(this._watch);
            this._watch = 0;
        }
        this._latticaOwner = null;
        this._ungrabAll();
        this._stopClosingOnClickOutside();
        for (const [object, id] of this._signals)
            object.disconnect(id);
        this._signals = [];
        if (this._exported) {
            this._exported.unexport();
            this._exported = null;
        }
    }

    _connect(object, name, handler) {
        this._signals.push([object, object.connect(name, handler)]);
    }

    _emit(name) {
        if (this._exported)
            this._exported.emit_signal(name, null);
    }

    Ping() {
    }

    // Accelerators. Mutter reports an accelerator's press only: its release is taken to be the moment
    // the accelerator's modifiers stop being all held, looked at every RELEASE_POLL_MS after the press.
    // An accelerator without modifiers is released at the first look. Presses of the held accelerator
    // (the key tapped again, or repeating) are not reported again; another accelerator's press first
    // releases the held one.
    GrabAcceleratorAsync([accelerator], invocation) {
        if (!this._allowed(invocation))
            return;
        this._return(invocation, '(u)', [this._grab(accelerator)]);
    }

    UngrabAcceleratorAsync([action], invocation) {
        if (!this._allowed(invocation))
            return;
        if (this._accelerators.has(action))
            this._ungrab(action);
        invocation.return_value(null);
    }

    // Whether the accelerator can be grabbed: nothing else (the Shell's own key bindings included)
    // holds it.
    AcceleratorFreeAsync([accelerator], invocation) {
        if (!this._allowed(invocation))
            return;
        const action = this._grab(accelerator);
        if (action)
            this._ungrab(action);
        this._return(invocation, '(b)', [action !== 0]);
    }

    _grab(accelerator) {
        const shell = this._shell;
        const action = shell.display.grab_accelerator(accelerator, shell.Meta.KeyBindingFlags.NONE);
        if (action === shell.Meta.KeyBindingAction.NONE)
            return 0;
        shell.allowKeybinding(shell.Meta.external_binding_name_for_action(action), true);
        this._accelerators.set(action, modifierGroupsOf(shell, accelerator));
        return action;
    }

    _ungrab(action) {
        const shell = this._shell;
        if (this._held && this._held.action === action)
            this._endHold(false);
        this._accelerators.delete(action);
        shell.allowKeybinding(shell.Meta.external_binding_name_for_action(action), false);
        shell.display.ungrab_accelerator(action);
    }

    _ungrabAll() {
        for (const action of [...this._accelerators.keys()])
            this._ungrab(action);
    }

    _onAccelerator(action) {
        const groups = this._accelerators.get(action);
        if (groups === undefined)
            return;
        if (this._held) {
            if (this._held.action === action)
                return;
            this._endHold(true);
        }
        this._emitToLattica('AcceleratorPressed', action);
        const shell = this._shell;
        const held = {action, source: 0};
        held.source = shell.GLib.timeout_add(shell.GLib.PRIORITY_HIGH, RELEASE_POLL_MS, () => {
            const [, , modifiers] = shell.getPointer();
            if (groups.length > 0 && groups.every(group => (modifiers & group) !== 0))
                return shell.GLib.SOURCE_CONTINUE;
            held.source = 0;
            this._endHold(true);
            return shell.GLib.SOURCE_REMOVE;
        });
        this._held = held;
    }

    _endHold(report) {
        const held = this._held;
        this._held = null;
        if (held.source)
            this._shell.GLib.source_remove(held.source);
        if (report)
            this._emitToLattica('AcceleratorReleased', held.action);
    }

    // Key signals go to Lattica alone, not to everyone on the bus.
    _emitToLattica(name, action) {
        if (this._latticaOwner === null)
            return;
        const shell = this._shell;
        shell.Gio.DBus.session.emit_signal(this._latticaOwner, BRIDGE_PATH, 'app.lattica.Shell', name,
            new shell.GLib.Variant('(u)', [action]));
    }

    // The monitor's picture as PNG, taken by the Shell's own screenshot code.
    CaptureMonitorAsync([index], invocation) {
        if (!this._allowed(invocation))
            return;
        const shell = this._shell;
        if (index < 0 || index >= shell.display.get_n_monitors()) {
            invocation.return_dbus_error('app.lattica.Shell.Error.NoSuchMonitor', `There is no monitor ${index}`);
            return;
        }
        const rect = shell.display.get_monitor_geometry(index);
        const stream = shell.Gio.MemoryOutputStream.new_resizable();
        const screenshot = new shell.Screenshot();
        try {
            screenshot.screenshot_area(rect.x, rect.y, rect.width, rect.height, stream, (source, result) => {
                try {
                    screenshot.screenshot_area_finish(result);
                    stream.close(null);
                    const png = shell.GLib.Variant.new_from_bytes(new shell.GLib.VariantType('ay'),
                        stream.steal_as_bytes(), true);
                    invocation.return_value(shell.GLib.Variant.new_tuple([png]));
                } catch (e) {
                    invocation.return_dbus_error('app.lattica.Shell.Error.CaptureFailed', String(e));
                }
            });
        } catch (e) {
            invocation.return_dbus_error('app.lattica.Shell.Error.CaptureFailed', String(e));
        }
    }

    // Whether the caller is Lattica; anyone else gets an access error.
    _allowed(invocation) {
        if (this._latticaOwner !== null && invocation.get_sender() === this._latticaOwner)
            return true;
        invocation.return_dbus_error('org.freedesktop.DBus.Error.AccessDenied',
            `Only the owner of ${LATTICA_BUS_NAME} may use this interface`);
        return false;
    }

    MonitorsAsync(parameters, invocation) {
        if (this._allowed(invocation))
            this._return(invocation, '(s)', [JSON.stringify(monitorsOf(this._shell))]);
    }

    WindowsAsync(parameters, invocation) {
        if (!this._allowed(invocation))
            return;
        const windows = stackedWindows(this._shell).map(window => describeWindow(this._shell, window));
        this._return(invocation, '(s)', [JSON.stringify(windows)]);
    }

    FocusedWindowAsync(parameters, invocation) {
        if (!this._allowed(invocation))
            return;
        const window = this._shell.display.get_focus_window();
        this._return(invocation, '(t)', [window ? window.get_id() : 0]);
    }

    _return(invocation, signature, values) {
        invocation.return_value(new this._shell.GLib.Variant(signature, values));
    }

    // Methods that change a window answer once the window shows the change (`done`), or after
    // SETTLE_TIMEOUT_MS with the state it has then; the caller judges the result from that state.
    MoveToMonitorAsync([id, monitor], invocation) {
        const shell = this._shell;
        let maximized = false;
        this._change(id, invocation, window => {
            if (monitor < 0 || monitor >= shell.display.get_n_monitors())
                return 'no such monitor';
            maximized = window.get_maximized() === shell.Meta.MaximizeFlags.BOTH;
            window.move_to_monitor(monitor);
            return null;
        }, window => window.get_monitor() === monitor &&
            (!maximized || sameRect(frameOf(window), window.get_work_area_for_monitor(monitor))));
    }

    MoveResizeAsync([id, x, y, width, height], invocation) {
        this._change(id, invocation, window => {
            if (window.get_maximized())
                window.unmaximize(this._shell.Meta.MaximizeFlags.BOTH);
            window.move_resize_frame(true, x, y, width, height);
            return null;
        }, window => sameRect(frameOf(window), {x, y, width, height}));
    }

    SetMaximizedAsync([id, maximized], invocation) {
        const both = this._shell.Meta.MaximizeFlags.BOTH;
        this._change(id, invocation, window => {
            if (maximized)
                window.maximize(both);
            else
                window.unmaximize(both);
            return null;
        }, window => (window.get_maximized() === both) === maximized &&
            (!maximized || sameRect(frameOf(window), window.get_work_area_current_monitor())));
    }

    UnminimizeAsync([id], invocation) {
        this._change(id, invocation, window => {
            window.unminimize();
            return null;
        }, window => !window.minimized);
    }

    ActivateAsync([id], invocation) {
        this._change(id, invocation, window => {
            this._shell.activateWindow(window);
            return null;
        }, window => this._shell.display.get_focus_window() === window);
    }

    // Activates the process's window with the title once Mutter shows it: asked for as the window is
    // being shown, before the client has created its surface, since a Wayland client cannot take the
    // focus itself. A top bar menu still open (the tray host opens the icon's menu on the first click of
    // a double click) is closed first: its grab would keep the keyboard and the first click from it.
    ActivateWhenShownAsync([pid, title], invocation) {
        if (!this._allowed(invocation))
            return;
        const shell = this._shell;
        shell.closeTopBarMenu();
        const reply = result => invocation.return_value(new shell.GLib.Variant('(s)', [JSON.stringify(result)]));
        const matches = window => window.get_pid() === pid && window.get_title() === title;
        const activate = window => {
            shell.activateWindow(window);
            this._closeOnClickOutside(window);
            reply({result: 'ok', window: describeWindow(shell, window)});
        };
        const placed = stackedWindows(shell).filter(matches);
        if (placed.length > 0) {
            activate(placed.reduce((newest, window) => window.get_id() > newest.get_id() ? window : newest));
            return;
        }
        // Not placed yet: the window may exist without its first drawing, or not exist yet.
        const watch = new Watch(shell);
        const watchWindow = window => {
            if (window.get_pid() !== pid)
                return;
            watch.connect(window, 'shown', () => {
                if (!matches(window))
                    return;
                watch.stop();
                activate(window);
            });
        };
        for (const actor of shell.getWindowActors()) {
            const window = actor.get_meta_window();
            if (window)
                watchWindow(window);
        }
        watch.connect(shell.display, 'window-created', (display, window) => watchWindow(window));
        watch.expireAfter(SHOW_TIMEOUT_MS, () => reply({result: 'gone'}));
    }

    // A click on the desktop's background or the Shell's own chrome leaves the focus where it is, and
    // would leave the pop-up open: while the window has the focus, a press anywhere outside it takes the
    // focus away, as a click outside does on other desktops. (Presses on windows go to their clients
    // without passing here, and move the focus anyway.)
    _closeOnClickOutside(window) {
        this._stopClosingOnClickOutside();
        const shell = this._shell;
        const types = shell.Clutter.EventType;
        const ids = [];
        ids.push([shell.stage, shell.stage.connect('captured-event', (stage, event) => {
            const type = event.type();
            if ((type === types.BUTTON_PRESS || type === types.TOUCH_BEGIN) &&
                shell.display.get_focus_window() === window) {
                const [x, y] = event.get_coords();
                const frame = frameOf(window);
                if (x < frame.x || y < frame.y || x >= frame.x + frame.width || y >= frame.y + frame.height)
                    shell.display.unset_input_focus(event.get_time());
            }
            return shell.Clutter.EVENT_PROPAGATE;
        })]);
        ids.push([window, window.connect('unmanaged', () => this._stopClosingOnClickOutside())]);
        this._outsideClickWatch = ids;
    }

    _stopClosingOnClickOutside() {
        for (const [object, id] of this._outsideClickWatch)
            object.disconnect(id);
        this._outsideClickWatch = [];
    }

    _change(id, invocation, change, done) {
        if (!this._allowed(invocation))
            return;
        const shell = this._shell;
        const window = findWindow(shell, id);
        const reply = result => invocation.return_value(new shell.GLib.Variant('(s)', [JSON.stringify(result)]));
        if (!window) {
            reply({result: 'gone'});
            return;
        }
        let error;
        try {
            error = change(window);
        } catch (e) {
            error = String(e);
        }
        if (error) {
            reply({result: 'failure', error});
            return;
        }
        const answer = () => reply({result: 'ok', window: describeWindow(shell, window)});
        if (done(window)) {
            answer();
            return;
        }
        // Wayland clients take a new size when they next draw, and focus follows later: wait.
        const watch = new Watch(shell);
        const check = () => {
            if (done(window)) {
                watch.stop();
                answer();
            }
        };
        for (const name of ['position-changed', 'size-changed', 'notify::minimized', 'notify::maximized-horizontally'])
            watch.connect(window, name, check);
        watch.connect(shell.display, 'notify::focus-window', check);
        watch.connect(window, 'unmanaged', () => {
            watch.stop();
            reply({result: 'gone'});
        });
        watch.expireAfter(SETTLE_TIMEOUT_MS, answer);
    }
};
