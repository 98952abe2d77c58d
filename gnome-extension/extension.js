// SPDX-License-Identifier: MIT
// Entry for GNOME Shell 43 and 44, which load extensions through the legacy imports.
/* exported init */
const {Clutter, Gio, GLib, Meta, Shell} = imports.gi;
const Main = imports.ui.main;
const Me = imports.misc.extensionUtils.getCurrentExtension();
const {LatticaBridge} = Me.imports.bridge;

class Extension {
    enable() {
        this._bridge = new LatticaBridge({
            Gio, GLib, Meta, Clutter,
            display: global.display,
            stage: global.stage,
            tracker: Shell.WindowTracker.get_default(),
            monitorManager: Meta.MonitorManager.get(),
            getWindowActors: () => global.get_window_actors(),
            activateWindow: window => Main.activateWindow(window),
            closeTopBarMenu: () => {
                const menu = Main.panel.menuManager.activeMenu;
                if (menu)
                    menu.close();
            },
            getPointer: () => global.get_pointer(),
            Screenshot: Shell.Screenshot,
            allowKeybinding: (name, allowed) => Main.wm.allowKeybinding(name, allowed
                ? Shell.ActionMode.NORMAL | Shell.ActionMode.OVERVIEW | Shell.ActionMode.POPUP
                : Shell.ActionMode.NONE),
        });
        this._bridge.enable();
    }

    disable() {
        this._bridge.disable();
        this._bridge = null;
    }
}

function init() {
    return new Extension();
}
