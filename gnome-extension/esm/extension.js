// SPDX-License-Identifier: MIT
// Entry for GNOME Shell 45 and later, which load extensions as ES modules. The install step puts it
// next to bridge-module.js, a copy of bridge.js that ends with an export of LatticaBridge.
import Clutter from 'gi://Clutter';
import Gio from 'gi://Gio';
import GLib from 'gi://GLib';
import Meta from 'gi://Meta';
import Shell from 'gi://Shell';
import * as Main from 'resource:///org/gnome/shell/ui/main.js';
import {Extension} from 'resource:///org/gnome/shell/extensions/extension.js';

import {LatticaBridge} from './bridge-module.js';

export default class LatticaExtension extends Extension {
    enable() {
        this._bridge = new LatticaBridge({
            Gio, GLib, Meta, Clutter,
            display: global.display,
            stage: global.stage,
            tracker: Shell.WindowTracker.get_default(),
            monitorManager: global.backend.get_monitor_manager(),
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
