// SPDX-License-Identifier: MIT
// Stands in for GNOME Shell's extensions/extension.js: the base class keeps the metadata it is given.
export class Extension {
    constructor(metadata) {
        this.metadata = metadata;
    }
}
