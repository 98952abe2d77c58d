// SPDX-License-Identifier: MIT
#include "platform/x11/X11WindowTable.h"

#include <QHash>
#include <QSet>

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11WindowManagerWindows.h"

namespace {

// Copies what a later, smaller read found into the facts of the same window.
void merge(QList<X11WindowFacts>& windows, const QList<X11WindowFacts>& extra) {
    QHash<xcb_window_t, const X11WindowFacts*> byWindow;
    for (const X11WindowFacts& facts : extra) {
        byWindow.insert(facts.window, &facts);
    }
    for (X11WindowFacts& facts : windows) {
        const X11WindowFacts* found = byWindow.value(facts.window);
        if (found == nullptr) {
            continue;
        }
        if (found->transientFor != XCB_NONE) {
            facts.transientFor = found->transientFor;
        }
        if (!found->className.isEmpty() || !found->classInstance.isEmpty()) {
            facts.classInstance = found->classInstance;
            facts.className = found->className;
        }
    }
}

}  // namespace

X11WindowTable X11WindowTable::read(X11WindowReader& reader, unsigned managedFields,
                                    const std::function<void()>& afterListing) {
    X11WindowTable table;
    table.root = reader.readRoot(
        X11WindowReader::ClientList | X11WindowReader::Children | X11WindowReader::ActiveWindow |
        X11WindowReader::CurrentDesktop | X11WindowReader::GlobalOrigin | X11WindowReader::WindowManagerCheck |
        ((managedFields & X11WindowFacts::Opacity) ? X11WindowReader::CompositingManager : 0u) |
        ((managedFields & X11WindowFacts::Desktop) ? X11WindowReader::DesktopCount : 0u));
    if (!table.root.connected) {
        return table;
    }
    // Without a compositing manager every window is drawn fully, whatever its opacity says.
    if (!table.root.compositingManager) {
        managedFields &= ~X11WindowFacts::Opacity;
    }
    // With a single desktop every window is on it (the window manager keeps windows on desktops that
    // exist), so which one a window names is not read.
    if (table.root.desktopCount == 1u) {
        managedFields &= ~X11WindowFacts::Desktop;
    }
    if (afterListing) {
        afterListing();
    }
    // Every request counts at hundreds of windows. The map state of managed windows is not needed;
    // WM_TRANSIENT_FOR only matters for windows without a type; WM_CLASS names the application, so one
    // window per process (its front-most) is enough. Those two wait for a later stage.
    const bool wantsTransient = (managedFields & (X11WindowFacts::Type | X11WindowFacts::Transient)) != 0;
    const bool wantsClass = (managedFields & X11WindowFacts::Class) != 0;
    const unsigned managedFirst = (managedFields | X11WindowFacts::Pid) &
                                  ~(X11WindowFacts::Attributes | X11WindowFacts::Transient | X11WindowFacts::Class);
    const unsigned unmanagedFields = ((managedFields | X11WindowFacts::Pid) & ~X11WindowFacts::Attributes) |
                                     (wantsTransient ? X11WindowFacts::Transient : 0u);

    // Stage 2: every managed client, and the attributes of every other root child.
    const QSet<xcb_window_t> managed(table.root.clientListStacking.cbegin(), table.root.clientListStacking.cend());
    QList<X11WindowReader::Request> requests;
    requests.reserve(table.root.clientListStacking.size() + table.root.rootChildren.size());
    for (auto it = table.root.clientListStacking.crbegin(); it != table.root.clientListStacking.crend(); ++it) {
        requests.append({*it, managedFirst});
    }
    const qsizetype managedCount = requests.size();
    // Under a reparenting window manager most other root children are its frames, one per client. They
    // and the window manager's other windows are made by its own connection, the one that made the check
    // window it names, so their attributes are not read. That is checked in the same stage: a check
    // window that does not name itself back is a stale one, and then every other root child is read.
    X11WindowManagerWindows windowManagerWindows(reader.connection(), table.root);
    QList<X11WindowReader::Request> windowManagerRequests;
    for (auto it = table.root.rootChildren.crbegin(); it != table.root.rootChildren.crend(); ++it) {
        if (managed.contains(*it)) {
            continue;
        }
        if (windowManagerWindows.madeBy(*it)) {
            windowManagerRequests.append({*it, X11WindowFacts::Attributes});
        } else {
            requests.append({*it, X11WindowFacts::Attributes});
        }
    }
    QList<X11WindowFacts> stage2 = reader.readWindows(requests);
    if (!windowManagerRequests.isEmpty() && !windowManagerWindows.confirmed()) {
        stage2 += reader.readWindows(windowManagerRequests);
    }

    // Stage 3: the unmanaged windows' properties, the transient-for of managed windows without a type,
    // and the class of each owner's first window.
    QList<X11WindowFacts> managedWindows;
    QList<X11WindowReader::Request> extraRequests;
    QSet<pid_t> classOwners;
    managedWindows.reserve(managedCount);
    for (qsizetype i = 0; i < managedCount; ++i) {
        if (!stage2[i].exists) {
            continue;
        }
        X11WindowFacts& facts = managedWindows.emplace_back(std::move(stage2[i]));
        facts.managed = true;
        unsigned extra = 0;
        if (wantsTransient && facts.types.isEmpty()) {
            extra |= X11WindowFacts::Transient;
        }
        if (facts.pid && wantsClass && !classOwners.contains(*facts.pid)) {
            classOwners.insert(*facts.pid);
            extra |= X11WindowFacts::Class;
        }
        if (extra != 0) {
            extraRequests.append({facts.window, extra});
        }
    }
    // With a window manager the other root children are its frames and its own windows; without one,
    // every mapped root child is a top-level window of some client.
    const bool withoutWindowManager = !table.root.hasClientList;
    QList<X11WindowReader::Request> unmanagedRequests;
    QHash<xcb_window_t, X11WindowFacts> unmanagedAttributes;
    for (qsizetype i = managedCount; i < stage2.size(); ++i) {
        const X11WindowFacts& child = stage2[i];
        if (child.exists && !child.inputOnly && (child.overrideRedirect || (withoutWindowManager && child.mapped))) {
            unmanagedRequests.append({child.window, unmanagedFields});
            unmanagedAttributes.insert(child.window, child);
        }
    }
    X11WindowReader::PendingWindows pendingUnmanaged = reader.sendWindowRequests(unmanagedRequests);
    X11WindowReader::PendingWindows pendingExtra = reader.sendWindowRequests(extraRequests);
    QList<X11WindowFacts> unmanagedWindows = reader.collectWindows(pendingUnmanaged);
    merge(managedWindows, reader.collectWindows(pendingExtra));
    unmanagedWindows.removeIf([](const X11WindowFacts& facts) { return !facts.exists; });
    for (X11WindowFacts& facts : unmanagedWindows) {
        const X11WindowFacts& attributes = unmanagedAttributes[facts.window];
        facts.overrideRedirect = attributes.overrideRedirect;
        facts.viewable = attributes.viewable;
        facts.mapped = attributes.mapped;
    }

    table.windows = std::move(unmanagedWindows);
    table.windows.append(std::move(managedWindows));
    return table;
}
