// SPDX-License-Identifier: MIT
#include "platform/x11/X11WindowOwners.h"

#include <QFile>
#include <QHash>
#include <QSet>
#include <algorithm>

#include "platform/x11/X11WindowDesktopEntries.h"
#include "platform/x11/X11WindowKinds.h"

namespace {

QByteArray readProcFile(pid_t pid, const char* name) {
    QFile file(QStringLiteral("/proc/%1/%2").arg(pid).arg(QLatin1String(name)));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return file.readAll();
}

// How much a window says about its owner's presence: a taskbar window makes a regular application.
ApplicationPolicy policyOfWindow(const X11WindowFacts& facts, const X11WindowKinds& kinds) {
    if (!facts.managed) {
        return ApplicationPolicy::Prohibited;
    }
    switch (kinds.kind(facts)) {
        case X11WindowKinds::Kind::Normal:
        case X11WindowKinds::Kind::Dialog:
            return kinds.isSkipTaskbar(facts) ? ApplicationPolicy::Accessory : ApplicationPolicy::Regular;
        case X11WindowKinds::Kind::Dock:
        case X11WindowKinds::Kind::Desktop:
            return ApplicationPolicy::Prohibited;
        default:
            return ApplicationPolicy::Accessory;
    }
}

// Regular beats accessory beats prohibited.
int rank(ApplicationPolicy policy) {
    switch (policy) {
        case ApplicationPolicy::Regular:
            return 2;
        case ApplicationPolicy::Accessory:
            return 1;
        case ApplicationPolicy::Prohibited:
            break;
    }
    return 0;
}

// Linux pids stay below 2^22; client connections are numbered from here on.
constexpr pid_t kFirstConnection = 0x40000000;

}  // namespace

std::optional<pid_t> X11WindowOwners::ownerOf(xcb_window_t window, const PidSources& sources, uint32_t resourceIdMask) {
    if (sources.clientPid) {
        return sources.clientPid;
    }
    if (!sources.serverNamesClients && sources.netWmPid && sources.netWmPidIsAClient) {
        return sources.netWmPid;
    }
    // Every resource of one client shares the bits above the mask: the base of its connection.
    const uint32_t base = window & ~resourceIdMask;
    if (window == XCB_NONE || base == 0) {
        return std::nullopt;
    }
    return static_cast<pid_t>(static_cast<uint32_t>(kFirstConnection) | (base >> 1));
}

bool X11WindowOwners::isConnection(pid_t owner) {
    return owner >= kFirstConnection;
}

std::optional<QString> X11WindowOwners::processName(pid_t pid) {
    const QByteArray comm = readProcFile(pid, "comm").trimmed();
    return comm.isEmpty() ? std::nullopt : std::optional<QString>(QString::fromUtf8(comm));
}

std::optional<quint64> X11WindowOwners::processStartTime(pid_t pid) {
    const QByteArray stat = readProcFile(pid, "stat");
    // The command name may hold blanks and parentheses; the fields after the last ')' are fixed.
    const qsizetype close = stat.lastIndexOf(')');
    if (close < 0) {
        return std::nullopt;
    }
    const QList<QByteArray> fields = stat.mid(close + 2).split(' ');
    // Field 22 of the whole line is the 20th after the name (state is field 3).
    constexpr int kStartTimeIndex = 22 - 3;
    if (fields.size() <= kStartTimeIndex) {
        return std::nullopt;
    }
    bool ok = false;
    const quint64 value = fields[kStartTimeIndex].toULongLong(&ok);
    return ok ? std::optional<quint64>(value) : std::nullopt;
}

QList<X11WindowOwner> X11WindowOwners::fromTable(const X11WindowTable& table, const X11WindowKinds& kinds,
                                                 X11WindowDesktopEntries& entries) {
    QHash<pid_t, qsizetype> indexByPid;
    QSet<pid_t> classFromManaged;
    QList<X11WindowOwner> owners;
    for (const X11WindowFacts& facts : table.windows) {
        if (!facts.pid) {
            continue;
        }
        const pid_t pid = *facts.pid;
        auto found = indexByPid.constFind(pid);
        if (found == indexByPid.constEnd()) {
            X11WindowOwner owner;
            owner.pid = pid;
            found = indexByPid.insert(pid, owners.size());
            owners.append(owner);
        }
        X11WindowOwner& owner = owners[*found];
        const ApplicationPolicy policy = policyOfWindow(facts, kinds);
        if (rank(policy) > rank(owner.policy)) {
            owner.policy = policy;
        }
        // Managed windows name the application better than menus and tooltips do.
        const bool replaces = owner.className.isEmpty() || (facts.managed && !classFromManaged.contains(pid));
        if (!facts.className.isEmpty() && replaces) {
            owner.classInstance = facts.classInstance;
            owner.className = facts.className;
            if (facts.managed) {
                classFromManaged.insert(pid);
            }
        }
    }
    for (X11WindowOwner& owner : owners) {
        // A connection lives as long as it has windows; it comes after every process.
        const std::optional<quint64> start =
            isConnection(owner.pid) ? std::optional<quint64>(~quint64{0}) : processStartTime(owner.pid);
        owner.terminated = !start.has_value();
        owner.startTime = start.value_or(0);
        if (!owner.className.isEmpty() || !owner.classInstance.isEmpty()) {
            if (const auto entry = entries.find(owner.classInstance, owner.className)) {
                owner.localizedName = entry->name;
                owner.desktopId = entry->id;
            } else if (!owner.className.isEmpty()) {
                owner.localizedName = QString::fromUtf8(owner.className);
            }
        }
        if (!owner.localizedName && !isConnection(owner.pid)) {
            owner.localizedName = processName(owner.pid);
        }
    }
    std::stable_sort(owners.begin(), owners.end(), [](const X11WindowOwner& a, const X11WindowOwner& b) {
        return a.startTime != b.startTime ? a.startTime < b.startTime : a.pid < b.pid;
    });
    return owners;
}
