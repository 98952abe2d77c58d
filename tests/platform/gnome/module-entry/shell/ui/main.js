// SPDX-License-Identifier: MIT
// Stands in for GNOME Shell's ui/main.js: records what the extension asks of it.
export const calls = [];

export function activateWindow(window) {
    calls.push(['activateWindow', window]);
}

export const wm = {
    allowKeybinding(name, modes) {
        calls.push(['allowKeybinding', name, modes]);
    },
};

// The top bar, with a menu open.
export const panel = {
    menuManager: {
        activeMenu: {
            close() {
                calls.push(['closeTopBarMenu']);
            },
        },
    },
};
