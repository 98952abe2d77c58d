// SPDX-License-Identifier: MIT
#include "platform/x11/X11WindowList.h"

#include <QElapsedTimer>
#include <QHash>
#include <QLoggingCategory>
#include <QSet>

#include "platform/x11/X11WindowControl.h"
#include "platform/x11/X11WindowOwners.h"
#include "platform/x11/X11WindowTable.h"

Q_LOGGING_CATEGORY(lcWindowList, "lattica.x11.windowlist", QtWarningMsg)

X11WindowList::X11WindowList(X11Connection& connection, X11WindowDesktopEntries& entries, X11WindowCache* cache,
                             X11WindowControl* control)
    : m_reader(connection, cache), m_kinds(connection), m_entries(entries), m_control(control) {}

std::optional<QList<WindowEntry>> X11WindowList::windows(DesktopWindows desktopWindows) {
    return read(desktopWindows, true);
}

std::optional<QList<WindowEntry>> X11WindowList::windowsWithoutTitles(DesktopWindows desktopWindows) {
    return read(desktopWindows, false);
}

std::optional<WindowInventory> X11WindowList::inventory(DesktopWindows desktopWindows) {
    X11WindowTable table;
    std::optional<QList<WindowEntry>> list = read(desktopWindows, false, &table);
    if (!list) {
        return std::nullopt;
    }
    WindowInventory inventory{std::move(*list), {}};
    if (m_control != nullptr) {
        QSet<pid_t> owners;
        for (const WindowEntry& entry : inventory.windows) {
            if (entry.pid) {
                owners.insert(*entry.pid);
            }
        }
        inventory.applications = m_control->applicationsIn(table, QList<pid_t>(owners.cbegin(), owners.cend()));
    }
    return inventory;
}

std::optional<QList<WindowEntry>> X11WindowList::read(DesktopWindows desktopWindows, bool withTitles,
                                                      X11WindowTable* tableRead) {
    constexpr unsigned kFields = X11WindowFacts::Geometry | X11WindowFacts::Type | X11WindowFacts::State |
                                 X11WindowFacts::Desktop | X11WindowFacts::Opacity | X11WindowFacts::Class;
    QElapsedTimer timer;
    timer.start();
    X11WindowTable table =
        X11WindowTable::read(m_reader, kFields | (withTitles ? X11WindowFacts::Title : 0u), m_afterListing);
    const qint64 readNs = timer.nsecsElapsed();
    if (!table.root.connected) {
        return std::nullopt;
    }
    QHash<pid_t, QString> ownerNames;
    for (const X11WindowOwner& owner : X11WindowOwners::fromTable(table, m_kinds, m_entries)) {
        if (owner.localizedName) {
            ownerNames.insert(owner.pid, *owner.localizedName);
        }
    }
    const qint64 ownersNs = timer.nsecsElapsed();
    const bool excludeDesktop = desktopWindows == DesktopWindows::Exclude;
    const QPoint origin = table.root.globalOriginInRoot;

    QList<WindowEntry> list;
    list.reserve(table.windows.size());
    for (const X11WindowFacts& facts : table.windows) {
        if (excludeDesktop && m_kinds.kind(facts) == X11WindowKinds::Kind::Desktop) {
            continue;
        }
        WindowEntry entry;
        entry.id = static_cast<qint64>(facts.window);
        entry.pid = facts.pid;
        if (facts.pid) {
            const auto name = ownerNames.constFind(*facts.pid);
            if (name != ownerNames.constEnd()) {
                entry.ownerName = *name;
            }
        }
        entry.frame = QRectF(facts.outerFrame().translated(-origin));
        entry.layer = m_kinds.layer(facts);
        entry.opacity = facts.opacity.value_or(1.0);
        entry.onScreen = m_kinds.isOnscreen(facts, table.root.currentDesktop);
        if (withTitles) {
            entry.title = facts.title;
        }
        list.append(entry);
    }
    qCDebug(lcWindowList) << table.windows.size() << "windows: read" << readNs / 1000 << "us, owners"
                          << (ownersNs - readNs) / 1000 << "us, entries" << (timer.nsecsElapsed() - ownersNs) / 1000
                          << "us";
    if (tableRead != nullptr) {
        *tableRead = std::move(table);
    }
    return list;
}
