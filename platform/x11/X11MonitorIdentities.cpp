// SPDX-License-Identifier: MIT
#include "platform/x11/X11MonitorIdentities.h"

#include <QHash>
#include <QSet>
#include <algorithm>

namespace {

// FNV-1a: a fixed, well-spread 32-bit number for a text, the same in every run and every version.
quint32 stableHash(const QString& text) {
    quint32 hash = 2166136261u;
    for (const char byte : text.toUtf8()) {
        hash ^= static_cast<quint8>(byte);
        hash *= 16777619u;
    }
    return hash;
}

QString describe(const Monitor& monitor) {
    if (monitor.serial != 0) {
        return QStringLiteral("vendor %1, model %2, serial %3")
            .arg(monitor.vendor)
            .arg(monitor.model)
            .arg(monitor.serial);
    }
    if (monitor.vendor != 0 || monitor.model != 0) {
        return QStringLiteral("vendor %1, model %2, unit %3").arg(monitor.vendor).arg(monitor.model).arg(monitor.unit);
    }
    return QStringLiteral("display %1").arg(monitor.id);
}

}  // namespace

QString X11MonitorIdentities::key(const Monitor& monitor) {
    if (monitor.serial != 0) {
        return QStringLiteral("s/%1/%2/%3").arg(monitor.vendor).arg(monitor.model).arg(monitor.serial);
    }
    if (monitor.vendor != 0 || monitor.model != 0) {
        return QStringLiteral("u/%1/%2/%3").arg(monitor.vendor).arg(monitor.model).arg(monitor.unit);
    }
    return QStringLiteral("d/%1").arg(monitor.id);
}

QStringList X11MonitorIdentities::makeDistinct(const QList<Candidate>& candidates) {
    QStringList changes;
    QHash<QString, QList<Candidate>> byKey;
    QStringList order;
    for (const Candidate& candidate : candidates) {
        const QString identity = key(*candidate.monitor);
        if (!byKey.contains(identity)) {
            order.append(identity);
        }
        byKey[identity].append(candidate);
    }
    QSet<QString> taken(order.cbegin(), order.cend());
    for (const QString& identity : order) {
        QList<Candidate> group = byKey.value(identity);
        if (group.size() < 2) {
            continue;
        }
        // Connector names, not the server's order (which follows the primary monitor), decide who keeps it.
        std::stable_sort(group.begin(), group.end(), [](const Candidate& a, const Candidate& b) {
            return a.connector != b.connector ? a.connector < b.connector : a.monitor->id < b.monitor->id;
        });
        const Candidate& keeper = group.first();
        QSet<QString> serialTexts{keeper.serialText};
        for (qsizetype i = 1; i < group.size(); ++i) {
            const Candidate& other = group[i];
            Monitor& monitor = *other.monitor;
            const bool ownSerialText = !other.serialText.isEmpty() && !serialTexts.contains(other.serialText);
            serialTexts.insert(other.serialText);
            const QString seed = ownSerialText                ? QStringLiteral("serial:") + other.serialText
                                 : !other.connector.isEmpty() ? QStringLiteral("connector:") + other.connector
                                                              : QStringLiteral("display:%1").arg(monitor.id);
            const QString before = describe(monitor);
            monitor.serial = stableHash(seed);
            while (monitor.serial == 0 || taken.contains(key(monitor))) {
                ++monitor.serial;
            }
            taken.insert(key(monitor));
            changes.append(QStringLiteral("Monitors on %1 and %2 report the same identity (%3); the one on %2 is "
                                          "told apart by its %4, as serial %5")
                               .arg(keeper.connector, other.connector, before,
                                    ownSerialText ? QStringLiteral("serial-number text") : QStringLiteral("connector"))
                               .arg(monitor.serial));
        }
    }
    return changes;
}
