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
    <signal name="MonitorsChanged"/>
    <signal name="WindowsChanged"/>
  </interface>
</node>`;

// How long a move waits for the window to report its new frame before answering with what it has.
var SETTLE_TIMEOUT_MS = 1000;

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

var LatticaBridge = class LatticaBridge {
    constructor(shell) {
        this._shell = shell;
        this._exported = null;
        this._signals = [];
        this._latticaOwner = null;
        this._watch = 0;
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
                this._latticaOwner = null;
            });
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
        const ids = [];
        let timeout = 0;
        const stop = () => {
            for (const [object, handler] of ids)
                object.disconnect(handler);
            ids.length = 0;
            if (timeout)
                shell.GLib.source_remove(timeout);
            timeout = 0;
        };
        const check = () => {
            if (done(window)) {
                stop();
                answer();
            }
        };
        for (const name of ['position-changed', 'size-changed', 'notify::minimized', 'notify::maximized-horizontally'])
            ids.push([window, window.connect(name, check)]);
        ids.push([shell.display, shell.display.connect('notify::focus-window', check)]);
        ids.push([window, window.connect('unmanaged', () => {
            stop();
            reply({result: 'gone'});
        })]);
        timeout = shell.GLib.timeout_add(shell.GLib.PRIORITY_DEFAULT, SETTLE_TIMEOUT_MS, () => {
            timeout = 0;
            stop();
            answer();
            return shell.GLib.SOURCE_REMOVE;
        });
    }
};
