// SPDX-License-Identifier: MIT
// Loads the extension's ES module entry (GNOME Shell 45 and later) as the Shell would, from its installed
// folder, and runs its enable and disable against stand-ins for the Shell: the Shell's resource modules
// come from ./shell through G_RESOURCE_OVERLAYS, the Shell's global object and window tracker are
// objects of this file, and Mutter's and the Shell's libraries give their real constants.
// Talks to the exported interface over the session bus from a second connection.
// Usage: gjs -m run-module-entry.js MODULE_FOLDER (on a session bus; exits non-zero at the first failure)
import Gio from 'gi://Gio';
import GLib from 'gi://GLib';
import Meta from 'gi://Meta';
import Shell from 'gi://Shell';
import System from 'system';

import {calls as mainCalls} from 'resource:///org/gnome/shell/ui/main.js';

const BUS_NAME = 'app.lattica.Lattica';
const PATH = '/app/lattica/Shell';
const INTERFACE = 'app.lattica.Shell';

let failures = 0;
function check(condition, what) {
    print(`${condition ? 'ok' : 'FAILED'}: ${what}`);
    if (!condition)
        failures++;
}

// An object with GObject-style signals that counts its connected handlers.
class Signals {
    constructor() {
        this._handlers = new Map();
        this._next = 1;
    }

    connect(name, handler) {
        const id = this._next++;
        this._handlers.set(id, {name, handler});
        return id;
    }

    disconnect(id) {
        if (!this._handlers.delete(id))
            throw new Error(`no handler ${id}`);
    }

    connectedNames() {
        return [...this._handlers.values()].map(entry => entry.name).sort();
    }
}

class FakeWindow extends Signals {
    constructor(id, title, frame) {
        super();
        this._id = id;
        this._title = title;
        this._frame = frame;
        this.minimized = false;
    }

    get_id() { return this._id; }
    get_pid() { return 4242; }
    get_title() { return this._title; }
    get_wm_class() { return 'fake'; }
    get_frame_rect() { return this._frame; }
    get_monitor() { return this._frame.x >= 1920 ? 1 : 0; }
    get_layer() { return Meta.StackLayer.NORMAL; }
    get_window_type() { return Meta.WindowType.NORMAL; }
    get_workspace() { return workspace; }
    get_maximized() { return 0; }
    is_fullscreen() { return false; }
    is_above() { return false; }
    is_skip_taskbar() { return false; }
    is_on_all_workspaces() { return false; }
    get_compositor_private() { return null; }
    get_client_type() { return Meta.WindowClientType.WAYLAND; }
}

const workspace = {};
const window = new FakeWindow(7, 'fake-window', {x: 100, y: 50, width: 640, height: 400});
const monitors = [{x: 0, y: 0, width: 1920, height: 1080}, {x: 1920, y: 0, width: 1280, height: 720}];
const grabbed = new Map();
const ungrabbed = [];

class FakeDisplay extends Signals {
    get_n_monitors() { return monitors.length; }
    get_primary_monitor() { return 0; }
    get_monitor_geometry(index) { return monitors[index]; }
    get_monitor_scale() { return 1; }
    get_workspace_manager() { return {get_active_workspace: () => workspace}; }
    get_focus_window() { return window; }
    sort_windows_by_stacking(windows) { return windows; }

    grab_accelerator(accelerator) {
        const action = 100 + grabbed.size;
        grabbed.set(action, accelerator);
        return action;
    }

    ungrab_accelerator(action) {
        ungrabbed.push(action);
        return grabbed.delete(action);
    }
}

const display = new FakeDisplay();
const monitorManager = new Signals();
const stage = new Signals();
let trackerAsked = 0;
globalThis.global = {
    display,
    stage,
    backend: {get_monitor_manager: () => monitorManager},
    get_window_actors: () => [{get_meta_window: () => window}],
    get_pointer: () => [0, 0, 0],
};
Shell.WindowTracker.get_default = () => {
    trackerAsked++;
    return {get_window_app: () => ({get_name: () => 'Fake', get_id: () => 'fake.desktop'})};
};

// Runs the promise's work on a main loop, as the Shell's own loop would run the extension's.
function run(promise) {
    const loop = new GLib.MainLoop(null, false);
    let outcome;
    promise.then(value => {
        outcome = {value};
    }, error => {
        outcome = {error};
    }).finally(() => loop.quit());
    loop.run();
    if (outcome.error)
        throw outcome.error;
    return outcome.value;
}

function call(connection, owner, method, parameters = null) {
    return new Promise(resolve => {
        connection.call(owner, PATH, INTERFACE, method, parameters, null, Gio.DBusCallFlags.NONE, 5000, null,
            (source, result) => {
                try {
                    resolve({reply: source.call_finish(result).deepUnpack()});
                } catch (e) {
                    resolve({error: Gio.DBusError.get_remote_error(e) || String(e)});
                }
            });
    });
}

function ownName(connection, name) {
    return new Promise((resolve, reject) => {
        connection.call('org.freedesktop.DBus', '/org/freedesktop/DBus', 'org.freedesktop.DBus', 'RequestName',
            new GLib.Variant('(su)', [name, 0]), null, Gio.DBusCallFlags.NONE, 5000, null,
            (source, result) => {
                try {
                    resolve(source.call_finish(result).deepUnpack()[0]);
                } catch (e) {
                    reject(e);
                }
            });
    });
}

async function main(folder) {
    const {default: LatticaExtension} = await import(`file://${folder}/extension.js`);
    const metadata = {uuid: 'lattica@lattica.app', path: folder};
    const extension = new LatticaExtension(metadata);
    check(extension.metadata === metadata, 'the entry is a Shell Extension that keeps its metadata');

    extension.enable();
    check(trackerAsked === 1, 'enable takes the Shell\'s window tracker');
    check(JSON.stringify(display.connectedNames()) ===
        JSON.stringify(['accelerator-activated', 'notify::focus-window', 'restacked', 'window-created']),
    `enable follows the display's signals (${display.connectedNames()})`);
    check(JSON.stringify(monitorManager.connectedNames()) === JSON.stringify(['monitors-changed']),
        'enable follows the monitor manager that global.backend gives');

    const shellBus = Gio.DBus.session;
    const lattica = Gio.DBusConnection.new_for_address_sync(
        Gio.dbus_address_get_for_bus_sync(Gio.BusType.SESSION, null),
        Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, null, null);
    const owner = shellBus.get_unique_name();

    let answer = await call(lattica, owner, 'Ping');
    check(answer.reply !== undefined, `the interface answers a ping on the session bus (${answer.error})`);
    answer = await call(lattica, owner, 'Monitors');
    check(answer.error === 'org.freedesktop.DBus.Error.AccessDenied',
        `a caller that does not own ${BUS_NAME} is refused (${answer.error})`);

    check(await ownName(lattica, BUS_NAME) === 1, `the second connection owns ${BUS_NAME}`);
    // The bus tells the Shell's connection of the new owner before it passes on the next call from it:
    // once a ping is answered, the extension's watch of the name has seen the owner.
    await call(lattica, owner, 'Ping');
    answer = await call(lattica, owner, 'Monitors');
    const monitorsAnswer = answer.reply || ['[]'];
    const listed = JSON.parse(monitorsAnswer[0]);
    check(listed.length === 2 && listed[1].x === 1920 && listed[1].width === 1280 && listed[0].primary,
        `its owner gets the monitors of global.display (${monitorsAnswer[0]})`);
    answer = await call(lattica, owner, 'Windows');
    const windows = answer.reply ? JSON.parse(answer.reply[0]) : [];
    check(windows.length === 1 && windows[0].title === 'fake-window' && windows[0].application === 'Fake' &&
        windows[0].client === 'wayland',
    `and the windows of global.get_window_actors, named by the tracker (${answer.reply || answer.error})`);
    answer = await call(lattica, owner, 'Activate', new GLib.Variant('(t)', [7]));
    check(mainCalls.some(([name, w]) => name === 'activateWindow' && w === window),
        `a window is activated through Main.activateWindow (${answer.reply || answer.error})`);
    mainCalls.length = 0;
    answer = await call(lattica, owner, 'ActivateWhenShown', new GLib.Variant('(us)', [4242, 'fake-window']));
    check(mainCalls.length === 2 && mainCalls[0][0] === 'closeTopBarMenu' && mainCalls[1][0] === 'activateWindow' &&
        mainCalls[1][1] === window,
    `a shown window of the process with the title is activated once the top bar's menu is closed (${answer.reply || answer.error})`);
    check(JSON.stringify(stage.connectedNames()) === JSON.stringify(['captured-event']) &&
        window.connectedNames().includes('unmanaged'),
    `and the stage's presses are watched while it lives, to take its focus on a click outside (${stage.connectedNames()})`);
    answer = await call(lattica, owner, 'GrabAccelerator', new GLib.Variant('(s)', ['<Control><Alt>2']));
    const action = answer.reply ? answer.reply[0] : 0;
    const modes = Shell.ActionMode.NORMAL | Shell.ActionMode.OVERVIEW | Shell.ActionMode.POPUP;
    check(action === 100 && mainCalls.some(([name, binding, mode]) => name === 'allowKeybinding' &&
        binding === Meta.external_binding_name_for_action(action) && mode === modes),
    `a grabbed accelerator is let through Main.wm.allowKeybinding in the normal modes (${action})`);

    extension.disable();
    check(display.connectedNames().length === 0 && monitorManager.connectedNames().length === 0 &&
        stage.connectedNames().length === 0 && window.connectedNames().length === 0,
    'disable lets go of every signal');
    check(ungrabbed.includes(action) && grabbed.size === 0, 'disable gives back the grabbed accelerator');
    check(mainCalls.some(([name, binding, mode]) => name === 'allowKeybinding' &&
        binding === Meta.external_binding_name_for_action(action) && mode === Shell.ActionMode.NONE),
    'and blocks its key binding again');
    answer = await call(lattica, owner, 'Ping');
    check(answer.error === 'org.freedesktop.DBus.Error.UnknownMethod',
        `after disable the interface is gone from the bus (${answer.error})`);

    // Enabled again, as the Shell does after unlocking the screen.
    extension.enable();
    answer = await call(lattica, owner, 'Ping');
    check(answer.reply !== undefined, `enabled again, it answers again (${answer.error})`);
    extension.disable();
    lattica.close_sync(null);
}

try {
    run(main(ARGV[0]));
} catch (e) {
    printerr(`FAILED: ${e}\n${e.stack}`);
    failures++;
}
if (failures > 0)
    printerr(`${failures} check(s) failed`);
System.exit(failures > 0 ? 1 : 0);
