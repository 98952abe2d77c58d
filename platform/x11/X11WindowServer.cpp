#include "platform/x11/X11WindowServer.h"

#include <QElapsedTimer>
#include <QHash>
#include <QLoggingCategory>

#include "platform/x11/X11WindowOwners.h"
#include "platform/x11/X11WindowTable.h"

Q_LOGGING_CATEGORY(lcWindowList, "lattica.x11.windowlist", QtWarningMsg)

X11WindowServer::X11WindowServer(X11Connection& connection, X11WindowDesktopEntries& entries, X11WindowCache* cache)
    : m_reader(connection, cache), m_kinds(connection), m_entries(entries) {}

std::optional<QList<WindowInfo>> X11WindowServer::copyWindowInfo(quint32 options) {
    constexpr unsigned kFields = X11WindowFacts::Geometry | X11WindowFacts::Type | X11WindowFacts::State |
                                 X11WindowFacts::Desktop | X11WindowFacts::Opacity | X11WindowFacts::Title |
                                 X11WindowFacts::Class;
    QElapsedTimer timer;
    timer.start();
    const X11WindowTable table = X11WindowTable::read(m_reader, kFields, m_afterListing);
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
    const bool excludeDesktop = (options & kCGWindowListExcludeDesktopElements) != 0;
    const QPoint origin = table.root.globalOriginInRoot;

    QList<WindowInfo> list;
    list.reserve(table.windows.size());
    for (const X11WindowFacts& facts : table.windows) {
        if (excludeDesktop && m_kinds.kind(facts) == X11WindowKinds::Kind::Desktop) {
            continue;
        }
        const QRect frame = facts.outerFrame().translated(-origin);
        WindowInfo info;
        info.insert(QLatin1String(kCGWindowNumber), static_cast<qint64>(facts.window));
        info.insert(QLatin1String(kCGWindowLayer), m_kinds.layer(facts));
        if (facts.pid) {
            info.insert(QLatin1String(kCGWindowOwnerPID), static_cast<int>(*facts.pid));
            const auto name = ownerNames.constFind(*facts.pid);
            if (name != ownerNames.constEnd()) {
                info.insert(QLatin1String(kCGWindowOwnerName), *name);
            }
        }
        info.insert(QLatin1String(kCGWindowAlpha), facts.opacity.value_or(1.0));
        info.insert(QLatin1String(kCGWindowBounds), QVariantMap{{QStringLiteral("X"), double(frame.x())},
                                                                {QStringLiteral("Y"), double(frame.y())},
                                                                {QStringLiteral("Width"), double(frame.width())},
                                                                {QStringLiteral("Height"), double(frame.height())}});
        info.insert(QLatin1String(kCGWindowIsOnscreen), m_kinds.isOnscreen(facts, table.root.currentDesktop));
        info.insert(QLatin1String(kCGWindowName), facts.title);
        list.append(info);
    }
    qCDebug(lcWindowList) << table.windows.size() << "windows: read" << readNs / 1000 << "us, owners"
                          << (ownersNs - readNs) / 1000 << "us, entries" << (timer.nsecsElapsed() - ownersNs) / 1000
                          << "us";
    return list;
}
