// SPDX-License-Identifier: MIT
// Parses the Shell extension's files as GNOME Shell loads them: the legacy entry and the shared bridge
// as scripts (GNOME 43-44), the ES module entry and the bridge with its export appended as modules
// (GNOME 45 and later). Exits non-zero, naming the file, at the first syntax error.
// Usage: gjs parse-extension.js EXTENSION_DIRECTORY
const {GLib} = imports.gi;

const directory = ARGV[0];
const read = name => new TextDecoder().decode(GLib.file_get_contents(`${directory}/${name}`)[1]);
const bridge = read('bridge.js');
const files = [
    ['extension.js', read('extension.js'), 'script'],
    ['bridge.js', bridge, 'script'],
    ['esm/extension.js', read('esm/extension.js'), 'module'],
    ['bridge-module.js', `${bridge}\nexport {LatticaBridge};\n`, 'module'],
];
let failed = false;
for (const [name, source, target] of files) {
    try {
        Reflect.parse(source, {target, source: name});
        print(`${name}: parsed as a ${target}`);
    } catch (e) {
        printerr(`${name}: ${e}`);
        failed = true;
    }
}
if (failed)
    imports.system.exit(1);
