#include "platform/x11/X11WindowTable.h"

#include <QHash>
#include <QSet>

#include "platform/x11/X11Connection.h"

X11WindowTable X11WindowTable::read(X11WindowReader& reader, unsigned managedFields,
                                    const std::function<void()>& afterListing) {
    X11WindowTable table;
    table.root =
        reader.readRoot(X11WindowReader::ClientList | X11WindowReader::Children | X11WindowReader::ActiveWindow |
                        X11WindowReader::CurrentDesktop | X11WindowReader::GlobalOrigin);
    if (!table.root.connected) {
        return table;
    }
    if (afterListing) {
        afterListing();
    }
    // Every request counts at hundreds of windows: the map state of managed windows is not needed, and
    // WM_TRANSIENT_FOR only matters for windows without a type, so it waits for the next stage.
    const unsigned fields =
        (managedFields | X11WindowFacts::Pid) & ~(X11WindowFacts::Attributes | X11WindowFacts::Transient);
    const bool wantsTransient = (managedFields & (X11WindowFacts::Type | X11WindowFacts::Transient)) != 0;

    // Stage 2: every managed client, and the attributes of every other root child.
    const QSet<xcb_window_t> managed(table.root.clientListStacking.cbegin(), table.root.clientListStacking.cend());
    QList<X11WindowReader::Request> requests;
    requests.reserve(table.root.clientListStacking.size() + table.root.rootChildren.size());
    for (auto it = table.root.clientListStacking.crbegin(); it != table.root.clientListStacking.crend(); ++it) {
        requests.append({*it, fields});
    }
    const qsizetype managedCount = requests.size();
    for (auto it = table.root.rootChildren.crbegin(); it != table.root.rootChildren.crend(); ++it) {
        if (!managed.contains(*it)) {
            requests.append({*it, X11WindowFacts::Attributes});
        }
    }
    const QList<X11WindowFacts> stage2 = reader.readWindows(requests);

    // Stage 3: the override-redirect windows' properties, the creators of managed windows without a
    // pid, and the transient-for of managed windows without a type.
    QList<X11WindowFacts> managedWindows;
    QList<xcb_window_t> withoutPid;
    QList<X11WindowReader::Request> transientRequests;
    for (qsizetype i = 0; i < managedCount; ++i) {
        if (stage2[i].exists) {
            managedWindows.append(stage2[i]);
            managedWindows.last().managed = true;
            if (!stage2[i].pid) {
                withoutPid.append(stage2[i].window);
            }
            if (wantsTransient && stage2[i].types.isEmpty()) {
                transientRequests.append({stage2[i].window, X11WindowFacts::Transient});
            }
        }
    }
    // With a window manager the other root children are its frames and its own windows; without one,
    // every mapped root child is a top-level window of some client.
    const bool withoutWindowManager = !table.root.hasClientList;
    QList<X11WindowReader::Request> unmanagedRequests;
    QHash<xcb_window_t, X11WindowFacts> unmanagedAttributes;
    const unsigned unmanagedFields = fields | (wantsTransient ? X11WindowFacts::Transient : 0u);
    for (qsizetype i = managedCount; i < stage2.size(); ++i) {
        const X11WindowFacts& child = stage2[i];
        if (child.exists && !child.inputOnly && (child.overrideRedirect || (withoutWindowManager && child.mapped))) {
            unmanagedRequests.append({child.window, unmanagedFields});
            unmanagedAttributes.insert(child.window, child);
        }
    }
    X11WindowReader::PendingWindows pendingUnmanaged = reader.sendWindowRequests(unmanagedRequests);
    X11WindowReader::PendingWindows pendingTransients = reader.sendWindowRequests(transientRequests);
    X11WindowReader::PendingPids pendingPids = reader.sendPidQueries(withoutPid);
    QList<X11WindowFacts> unmanagedWindows = reader.collectWindows(pendingUnmanaged);
    QHash<xcb_window_t, xcb_window_t> transientFor;
    for (const X11WindowFacts& facts : reader.collectWindows(pendingTransients)) {
        transientFor.insert(facts.window, facts.transientFor);
    }
    const QHash<xcb_window_t, pid_t> pids = reader.collectPids(pendingPids);
    for (X11WindowFacts& facts : managedWindows) {
        if (!facts.pid && pids.contains(facts.window)) {
            facts.pid = pids.value(facts.window);
        }
        facts.transientFor = transientFor.value(facts.window, XCB_NONE);
    }
    for (X11WindowFacts& facts : unmanagedWindows) {
        const X11WindowFacts& attributes = unmanagedAttributes[facts.window];
        facts.overrideRedirect = attributes.overrideRedirect;
        facts.viewable = attributes.viewable;
        facts.mapped = attributes.mapped;
    }

    // Stage 4: the creators of override-redirect windows without a pid.
    unmanagedWindows.removeIf([](const X11WindowFacts& facts) { return !facts.exists; });
    reader.resolveMissingPids(unmanagedWindows);

    table.windows = unmanagedWindows + managedWindows;
    return table;
}
