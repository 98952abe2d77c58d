// SPDX-License-Identifier: MIT
// Lattica's side inside KWin. Loaded as a script over D-Bus, once as the watcher that pushes the desktop's
// state on every change, and once per command. It answers through callDBus to the bus name Lattica gives
// in LATTICA_SERVICE. One source serves Plasma 5.27 (clients, numbered screens) and Plasma 6 (windows,
// output objects): it detects the API instead of asking for a version.

var api6 = typeof workspace.windowList === "function";

function allWindows() {
    return api6 ? workspace.windowList() : workspace.clientList();
}

function activeWindow() {
    return api6 ? workspace.activeWindow : workspace.activeClient;
}

// Plasma 5.27's scripts number screens but do not name them; KWin's support information does
// ("Screen 0:", a rule, "Name: DP-1"). Read once and again when the screens change: it is long.
var screenNames = [];

function readScreenNames() {
    if (api6 || typeof workspace.supportInformation !== "function") {
        return;
    }
    var info = String(workspace.supportInformation());
    var pattern = /Screen (\d+):\n-+\nName: ([^\n]*)/g;
    var match;
    screenNames = [];
    while ((match = pattern.exec(info)) !== null) {
        screenNames[parseInt(match[1], 10)] = match[2];
    }
}

function rectOf(r) {
    return {x: r.x, y: r.y, width: r.width, height: r.height};
}

// Where windows may be placed on a screen: the screen less the panels.
function workAreaOf(index) {
    if (api6) {
        return workspace.clientArea(KWin.PlacementArea, workspace.screens[index], workspace.currentDesktop);
    }
    return workspace.clientArea(KWin.PlacementArea, index, workspace.currentDesktop);
}

function screenList() {
    var screens = [];
    if (api6) {
        for (var i = 0; i < workspace.screens.length; i++) {
            var output = workspace.screens[i];
            var g = output.geometry;
            screens.push({name: output.name || "", x: g.x, y: g.y, width: g.width, height: g.height,
                          workArea: rectOf(workAreaOf(i))});
        }
    } else {
        for (var n = 0; n < workspace.numScreens; n++) {
            var area = workspace.clientArea(KWin.ScreenArea, n, workspace.currentDesktop);
            screens.push({name: screenNames[n] || "", x: area.x, y: area.y, width: area.width, height: area.height,
                          workArea: rectOf(workAreaOf(n))});
        }
    }
    return screens;
}

function screenIndexOf(window) {
    if (!api6) {
        return window.screen;
    }
    for (var i = 0; i < workspace.screens.length; i++) {
        if (workspace.screens[i] === window.output) {
            return i;
        }
    }
    return -1;
}

function isOnCurrentDesktop(window) {
    if (window.onAllDesktops) {
        return true;
    }
    if (api6) {
        var desktops = window.desktops || [];
        for (var i = 0; i < desktops.length; i++) {
            if (desktops[i] === workspace.currentDesktop) {
                return true;
            }
        }
        return false;
    }
    return window.desktop === workspace.currentDesktop;
}

// Plasma 5.27 has no readable maximise state: it is followed from its change signal, and guessed for
// windows that were maximised before the watcher started (their frame fills the maximise area).
var maximised = {};

function maximiseState(window) {
    var known = maximised[window.internalId];
    if (known !== undefined) {
        return known;
    }
    if (window.maximizeMode !== undefined) {
        return {h: (window.maximizeMode & 2) !== 0, v: (window.maximizeMode & 1) !== 0};
    }
    var area = workspace.clientArea(KWin.MaximizeArea, window);
    var f = window.frameGeometry;
    var filled = f.x === area.x && f.y === area.y && f.width === area.width && f.height === area.height;
    return {h: filled, v: filled};
}

function describe(window) {
    var f = window.frameGeometry;
    var state = maximiseState(window);
    return {
        id: String(window.internalId),
        pid: window.pid || 0,
        resourceClass: String(window.resourceClass || ""),
        resourceName: String(window.resourceName || ""),
        desktopFile: String(window.desktopFileName || ""),
        caption: String(window.caption || ""),
        x: f.x, y: f.y, width: f.width, height: f.height,
        minimized: !!window.minimized,
        fullScreen: !!window.fullScreen,
        maximizedH: state.h,
        maximizedV: state.v,
        normal: !!window.normalWindow,
        dialog: !!window.dialog,
        utility: !!window.utility || !!window.toolbar,
        dock: !!window.dock,
        desktopWindow: !!window.desktopWindow,
        special: !!window.specialWindow,
        popup: !!window.popupWindow || !!window.notification || !!window.criticalNotification ||
            !!window.onScreenDisplay || !!window.tooltip || !!window.splash || !!window.menu,
        skipTaskbar: !!window.skipTaskbar,
        skipSwitcher: !!window.skipSwitcher,
        keepAbove: !!window.keepAbove,
        managed: window.managed !== false,
        onCurrentDesktop: isOnCurrentDesktop(window),
        hidden: !!window.hidden,
        moveable: !!window.moveable,
        resizeable: !!window.resizeable,
        transient: !!window.transient,
        modal: !!window.modal,
        opacity: window.opacity === undefined ? 1 : window.opacity,
        stacking: window.stackingOrder || 0,
        screen: screenIndexOf(window),
        x11: window.windowId !== undefined && window.windowId !== 0,
    };
}

function snapshot() {
    var windows = [];
    var list = allWindows();
    for (var i = 0; i < list.length; i++) {
        if (!list[i].deleted) {
            windows.push(describe(list[i]));
        }
    }
    var active = activeWindow();
    return {api: api6 ? 6 : 5, screens: screenList(), windows: windows, active: active ? String(active.internalId) : ""};
}

function send(method, argument) {
    if (argument === undefined) {
        callDBus(LATTICA_SERVICE, "/lattica/kwin", "org.lattica.KWinBridge", method, JSON.stringify(snapshot()));
    } else {
        callDBus(LATTICA_SERVICE, "/lattica/kwin", "org.lattica.KWinBridge", method, argument,
                 JSON.stringify(snapshot()));
    }
}

function findWindow(id) {
    var list = allWindows();
    for (var i = 0; i < list.length; i++) {
        if (String(list[i].internalId) === id) {
            return list[i];
        }
    }
    return null;
}

// ---- The watcher: pushes the state whenever something Lattica shows may have changed.

function connectSignal(object, name, handler) {
    if (object && object[name] && object[name].connect) {
        object[name].connect(handler);
    }
}

// Changes come in bursts (a batch of moves changes many windows at once). The first change of a burst is
// reported at once; those that follow it before KWin is back in its event loop are reported together
// then, by a timer where one is at hand.
var pushTimer = null;
var pushPending = false;

function push() {
    if (typeof QTimer !== "function") {
        send("push");
        return;
    }
    if (pushTimer === null) {
        pushTimer = new QTimer();
        pushTimer.singleShot = true;
        pushTimer.interval = 0;
        pushTimer.timeout.connect(function () {
            if (pushPending) {
                pushPending = false;
                send("push");
            }
        });
    }
    if (pushTimer.active) {
        pushPending = true;
        return;
    }
    send("push");
    pushTimer.start();
}

function watchWindow(window) {
    var names = ["frameGeometryChanged", "captionChanged", "minimizedChanged", "fullScreenChanged",
                 "desktopChanged", "desktopsChanged", "screenChanged", "outputChanged", "stackingOrderChanged",
                 "keepAboveChanged", "skipTaskbarChanged", "skipSwitcherChanged", "opacityChanged", "windowClassChanged",
                 "desktopFileNameChanged", "hiddenChanged", "activeChanged"];
    for (var i = 0; i < names.length; i++) {
        connectSignal(window, names[i], push);
    }
    connectSignal(window, "clientMaximizedStateChanged", function (client, h, v) {
        maximised[client.internalId] = {h: h, v: v};
        push();
    });
    connectSignal(window, "maximizedChanged", push);
}

function startWatching() {
    var list = allWindows();
    for (var i = 0; i < list.length; i++) {
        watchWindow(list[i]);
    }
    var added = api6 ? "windowAdded" : "clientAdded";
    connectSignal(workspace, added, function (window) {
        watchWindow(window);
        askAboutOwnWindow(window);
        push();
    });
    connectSignal(workspace, api6 ? "windowRemoved" : "clientRemoved", function (window) {
        delete maximised[window.internalId];
        push();
    });
    connectSignal(workspace, "clientMaximizeSet", function (client, h, v) {
        maximised[client.internalId] = {h: h, v: v};
        push();
    });
    var workspaceSignals = ["windowActivated", "clientActivated", "clientMinimized", "clientUnminimized",
                            "clientFullScreenSet", "currentDesktopChanged", "desktopsChanged"];
    for (var n = 0; n < workspaceSignals.length; n++) {
        connectSignal(workspace, workspaceSignals[n], push);
    }
    var screenSignals = ["numberScreensChanged", "screenResized", "screensChanged", "virtualScreenGeometryChanged"];
    for (var m = 0; m < screenSignals.length; m++) {
        connectSignal(workspace, screenSignals[m], function () {
            readScreenNames();
            push();
        });
    }
    readScreenNames();
    push();
}

// ---- Commands: each answers once with its result and the state after it.

function answer(token, result) {
    send("answer", JSON.stringify({token: token, result: result}));
}

function sameRect(a, b) {
    return Math.abs(a.x - b.x) < 1 && Math.abs(a.y - b.y) < 1 && Math.abs(a.width - b.width) < 1 &&
        Math.abs(a.height - b.height) < 1;
}

// Sets the frame and calls done once the window has it; Wayland clients take their new size a little
// later. Returns a function that ends the wait with a result of its own.
function applyFrame(window, wanted, done) {
    var finished = false;
    var finish = function (result) {
        if (!finished) {
            finished = true;
            done(result);
        }
    };
    window.frameGeometry = wanted;
    if (sameRect(window.frameGeometry, wanted)) {
        finish("ok");
        return finish;
    }
    connectSignal(window, "frameGeometryChanged", function () {
        if (sameRect(window.frameGeometry, wanted)) {
            finish("ok");
        }
    });
    connectSignal(window, api6 ? "closed" : "windowClosed", function () {
        finish("gone");
    });
    return finish;
}

function screenAtPoint(x, y) {
    var screens = screenList();
    for (var i = 0; i < screens.length; i++) {
        var s = screens[i];
        if (x >= s.x && y >= s.y && x < s.x + s.width && y < s.y + s.height) {
            return i;
        }
    }
    return -1;
}

function sendToScreen(window, index) {
    if (api6) {
        workspace.sendClientToScreen(window, workspace.screens[index]);
    } else {
        workspace.sendClientToScreen(window, index);
    }
}

// Puts the frame's top-left corner at (x, y) and, when given, gives it the size; calls done with the
// result. A maximised or full-screen window is sent to the screen under the wanted frame's centre instead,
// where KWin gives it the same state and the size of that screen.
function place(window, x, y, width, height, done) {
    var f = window.frameGeometry;
    var w = width === undefined ? f.width : width;
    var h = height === undefined ? f.height : height;
    var state = maximiseState(window);
    if (window.fullScreen || state.h || state.v) {
        var target = screenAtPoint(x + w / 2, y + h / 2);
        if (target < 0) {
            target = screenAtPoint(x, y);
        }
        if (target >= 0 && target !== screenIndexOf(window)) {
            sendToScreen(window, target);
        }
        done("ok");
        return null;
    }
    return applyFrame(window, {x: x, y: y, width: w, height: h}, done);
}

function move(token, window, command) {
    place(window, command.x, command.y, undefined, undefined, function (result) {
        answer(token, result);
    });
}

function resize(token, window, command) {
    var state = maximiseState(window);
    if (window.fullScreen || state.h || state.v) {
        answer(token, "ok");  // it keeps the size of its screen
        return;
    }
    var f = window.frameGeometry;
    place(window, f.x, f.y, command.width, command.height, function (result) {
        answer(token, result);
    });
}

// Many windows in one script: each is placed at once, and one answer lists every window's result once all
// have them, or when the time limit ends the wait ("late" for those still waiting).
function placeAll(command) {
    var results = [];
    var pending = command.moves.length;
    var waits = [];
    var answered = false;
    var finishAll = function () {
        if (!answered && pending === 0) {
            answered = true;
            answer(command.token, results);
        }
    };
    for (var i = 0; i < command.moves.length; i++) {
        results.push("");
        var item = command.moves[i];
        var window = findWindow(item.window);
        var done = (function (index) {
            return function (result) {
                if (results[index] === "") {
                    results[index] = result;
                    pending--;
                    finishAll();
                }
            };
        })(i);
        if (!window) {
            done("gone");
            continue;
        }
        var wait = place(window, item.x, item.y, item.width, item.height, done);
        if (wait) {
            waits.push(wait);
        }
    }
    if (!answered && typeof QTimer === "function" && command.timeLimit > 0) {
        var timer = new QTimer();
        timer.singleShot = true;
        timer.interval = command.timeLimit;
        timer.timeout.connect(function () {
            for (var n = 0; n < waits.length; n++) {
                waits[n]("late");
            }
        });
        timer.start();
    }
    finishAll();
}

function activate(window) {
    if (api6) {
        workspace.activeWindow = window;
    } else {
        workspace.activeClient = window;
    }
}

// ---- Lattica's own windows. A Wayland client can neither keep itself out of the taskbar nor place its
// own windows: KWin does both for it. Each window is known by its title, without the " <2>" that KWin
// adds to repeated ones.

function plainCaption(window) {
    return String(window.caption || "").replace(/\u200e/g, "").replace(/ <\d+>$/, "");
}

// Puts the window next to the pointer, on the pointer's screen and inside its work area: centred on the
// pointer across, below it in the upper half of the screen and above it in the lower half.
function placeAtPointer(window) {
    var pointer = workspace.cursorPos;
    var index = screenAtPoint(pointer.x, pointer.y);
    var area = workAreaOf(index < 0 ? 0 : index);
    var f = window.frameGeometry;
    var x = pointer.x - Math.floor(f.width / 2);
    var y = pointer.y > area.y + area.height / 2 ? pointer.y - f.height : pointer.y;
    // A window larger than the area keeps its top-left corner inside.
    x = Math.max(area.x, Math.min(x, area.x + area.width - f.width));
    y = Math.max(area.y, Math.min(y, area.y + area.height - f.height));
    window.frameGeometry = {x: x, y: y, width: f.width, height: f.height};
}

// rule: {skipTaskbar, skipSwitcher, place: "pointer", activate}, each optional.
function applyOwnRule(window, rule) {
    if (window.deleted) {
        return;
    }
    if (rule.skipTaskbar !== undefined) {
        window.skipTaskbar = rule.skipTaskbar;
        window.skipPager = rule.skipTaskbar;
    }
    if (rule.skipSwitcher !== undefined) {
        window.skipSwitcher = rule.skipSwitcher;
    }
    if (rule.place === "pointer") {
        placeAtPointer(window);
    }
    if (rule.activate) {
        activate(window);
    }
}

// How Lattica knows its windows: by title and size (a frameless window and a decorated one may share a
// title).
function describeOwnWindow(window) {
    var client = window.clientGeometry || window.frameGeometry;
    return {caption: plainCaption(window), width: client.width, height: client.height};
}

// The watcher asks Lattica what to do with each window of its own as the window appears.
function askAboutOwnWindow(window) {
    if (typeof LATTICA_PID === "undefined" || window.pid !== LATTICA_PID || window.popupWindow) {
        return;
    }
    callDBus(LATTICA_SERVICE, "/lattica/kwin", "org.lattica.KWinBridge", "ownWindowShown",
             JSON.stringify(describeOwnWindow(window)), function (reply) {
                 var rule = null;
                 try {
                     rule = JSON.parse(reply);
                 } catch (error) {
                     return;
                 }
                 applyOwnRule(window, rule);
                 push();
             });
}

// The rule of the list ([{caption, width, height, rule}]) for a window: the first of its title and size,
// else the first of its title.
function ownRuleFor(rules, window) {
    var described = describeOwnWindow(window);
    var found = null;
    for (var i = 0; i < rules.length; i++) {
        var candidate = rules[i];
        if (candidate.caption !== described.caption) {
            continue;
        }
        var sameSize = Math.abs(candidate.width - described.width) < 1 &&
            Math.abs(candidate.height - described.height) < 1;
        if (sameSize) {
            return candidate.rule;
        }
        if (found === null) {
            found = candidate.rule;
        }
    }
    return found;
}

// Applies the rules to Lattica's windows, and the rule for other windows to those without one; the
// front-most window is activated when asked.
function ownWindows(command) {
    var list = allWindows();
    var front = null;
    for (var i = 0; i < list.length; i++) {
        var window = list[i];
        if (window.pid !== command.pid || window.deleted || window.popupWindow) {
            continue;
        }
        var rule = ownRuleFor(command.rules || [], window);
        applyOwnRule(window, rule !== null ? rule : (command.otherWindows || {}));
        if (!window.minimized && (front === null || window.stackingOrder > front.stackingOrder)) {
            front = window;
        }
    }
    if (command.activate && front !== null) {
        activate(front);
    }
    answer(command.token, front === null && command.activate ? "gone" : "ok");
}

function runCommand(command) {
    if (command.op === "state") {
        answer(command.token, "ok");
        return;
    }
    if (command.op === "place") {
        placeAll(command);
        return;
    }
    if (command.op === "ownWindows") {
        ownWindows(command);
        return;
    }
    var window = findWindow(command.window);
    if (!window) {
        answer(command.token, "gone");
        return;
    }
    if (command.op === "move") {
        move(command.token, window, command);
    } else if (command.op === "resize") {
        resize(command.token, window, command);
    } else if (command.op === "unminimise") {
        window.minimized = false;
        answer(command.token, "ok");
    } else if (command.op === "activate") {
        window.minimized = false;
        activate(window);
        answer(command.token, "ok");
    } else {
        answer(command.token, "unsupported");
    }
}
