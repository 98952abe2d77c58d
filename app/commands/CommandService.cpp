// SPDX-License-Identifier: MIT
#include "app/commands/CommandService.h"

#include <QCoreApplication>

#include <QJsonArray>
#include <QJsonObject>

#include "app/commands/MonitorTargets.h"
#include "app/displays/ScreenSnapshotService.h"
#include "app/model/Preferences.h"
#include "app/mover/WindowMoveStatus.h"
#include "app/mover/WindowMover.h"
#include "app/permissions/PermissionService.h"
#include "app/windows/WindowListFilters.h"
#include "platform/Monitors.h"
#include "platform/Platform.h"
#include "platform/RunningApplications.h"
#include "platform/WindowList.h"

namespace {

QJsonObject rectObject(const QRectF& rect) {
    return {{QStringLiteral("x"), rect.x()},
            {QStringLiteral("y"), rect.y()},
            {QStringLiteral("width"), rect.width()},
            {QStringLiteral("height"), rect.height()}};
}

QList<DisplaySnapshot> placeholders(const QList<DisplayDescriptor>& descriptors) {
    QList<DisplaySnapshot> snapshots;
    for (const DisplayDescriptor& descriptor : descriptors) {
        snapshots.append(DisplaySnapshot::placeholder(descriptor));
    }
    return snapshots;
}

std::variant<DisplayDescriptor, CommandResult> resolved(const QString& target, const QList<DisplayDescriptor>& displays,
                                                        const std::optional<DisplayDescriptor>& from) {
    auto found = MonitorTargets::resolve(target, displays, from);
    if (auto* missing = std::get_if<MonitorTargets::NoSuchMonitor>(&found)) {
        return CommandResult::error(CommandResult::Kind::BadArguments, CommandErrors::noSuchMonitor, missing->message);
    }
    return std::get<DisplayDescriptor>(found);
}

}  // namespace

std::optional<SizeMode> CommandService::sizeModeNamed(const QString& word) {
    if (word.isEmpty()) {
        return SizeMode::Preference;
    }
    if (word == QLatin1String("adjust")) {
        return SizeMode::Adjust;
    }
    if (word == QLatin1String("keep")) {
        return SizeMode::Keep;
    }
    return std::nullopt;
}

bool CommandService::adjusts(SizeMode size) const {
    return size == SizeMode::Adjust || (size == SizeMode::Preference && m_preferences.adjustWindowSize());
}

std::optional<CommandResult> CommandService::unavailable() {
    const CapabilityCheck check = PermissionService::requestWindowControl();
    if (check.isUsable()) {
        return std::nullopt;
    }
    const QString why =
        check.explanation.isEmpty()
            ? QCoreApplication::translate("CommandService", "Window control is required to move windows.")
            : check.explanation;
    return CommandResult::error(CommandResult::Kind::Unavailable, CommandErrors::notAvailable, why);
}

std::optional<DisplayDescriptor> CommandService::focusedMonitor(const QList<DisplayDescriptor>& displays) {
    const std::optional<FocusedWindowContext> focused = WindowMover::focusedWindowContext();
    if (!focused) {
        return std::nullopt;
    }
    const std::optional<DisplaySnapshot> best = WindowMover::bestSourceDisplay(focused->frame, placeholders(displays));
    if (!best) {
        return std::nullopt;
    }
    for (const DisplayDescriptor& display : displays) {
        if (display.persistentID == best->persistentID) {
            return display;
        }
    }
    return std::nullopt;
}

CommandResult CommandService::displays() const {
    const QList<Monitor> monitors = Platform::services().monitors->monitors();
    QJsonArray list;
    for (const DisplayDescriptor& display : ScreenSnapshotService::currentDisplayDescriptors()) {
        const auto monitor =
            std::find_if(monitors.cbegin(), monitors.cend(), [&](const Monitor& m) { return m.id == display.id; });
        list.append(QJsonObject{{QStringLiteral("index"), display.index},
                                {QStringLiteral("id"), display.persistentID},
                                {QStringLiteral("name"), display.name},
                                {QStringLiteral("bounds"), rectObject(display.bounds)},
                                {QStringLiteral("primary"), monitor != monitors.cend() && monitor->primary}});
    }
    CommandResult result;
    result.data = list;
    return result;
}

CommandResult CommandService::windows() const {
    const std::optional<QList<WindowEntry>> entries = Platform::services().windowList->windows(DesktopWindows::Exclude);
    if (!entries) {
        return CommandResult::error(
            CommandResult::Kind::Unavailable, CommandErrors::notAvailable,
            QCoreApplication::translate("CommandService", "The window list cannot be read on this desktop."));
    }
    const QList<DisplaySnapshot> displays = placeholders(ScreenSnapshotService::currentDisplayDescriptors());
    const QSet<pid_t> regular = WindowListFilters::regularApplicationPIDs();
    QJsonArray list;
    for (const WindowEntry& entry : *entries) {
        if (!WindowListFilters::isUserWindow(entry, regular)) {
            continue;
        }
        const std::optional<DisplaySnapshot> monitor = WindowMover::bestSourceDisplay(entry.frame, displays);
        list.append(QJsonObject{{QStringLiteral("id"), entry.id},
                                {QStringLiteral("pid"), static_cast<qint64>(*entry.pid)},
                                {QStringLiteral("app"), entry.ownerName.value_or(QString())},
                                {QStringLiteral("title"), entry.title.value_or(QString())},
                                {QStringLiteral("frame"), rectObject(entry.frame)},
                                {QStringLiteral("visible"), entry.onScreen},
                                {QStringLiteral("monitor"), monitor ? QJsonValue(monitor->index) : QJsonValue()}});
    }
    CommandResult result;
    result.data = list;
    return result;
}

CommandResult CommandService::moveFocused(const QString& to, SizeMode size) const {
    if (std::optional<CommandResult> refused = unavailable()) {
        return *refused;
    }
    const QList<DisplayDescriptor> displays = ScreenSnapshotService::currentDisplayDescriptors();
    const std::optional<DisplayDescriptor> from = focusedMonitor(displays);
    const auto target = resolved(to, displays, from);
    if (const auto* error = std::get_if<CommandResult>(&target)) {
        return *error;
    }
    const DisplayDescriptor& destination = std::get<DisplayDescriptor>(target);
    const WindowMoveResult moved =
        WindowMover::moveFocusedWindow(DisplaySnapshot::placeholder(destination), placeholders(displays), adjusts(size))
            .counts;
    return CommandResult::moves(moved.movedCount, moved.attemptedCount,
                                WindowMoveStatus::focusedWindow(moved, destination.name));
}

CommandResult CommandService::moveAll(const QString& from, const QString& to, SizeMode size) const {
    if (std::optional<CommandResult> refused = unavailable()) {
        return *refused;
    }
    const QList<DisplayDescriptor> displays = ScreenSnapshotService::currentDisplayDescriptors();
    const std::optional<DisplayDescriptor> focused = focusedMonitor(displays);
    const auto source = resolved(from, displays, focused);
    if (const auto* error = std::get_if<CommandResult>(&source)) {
        return *error;
    }
    const auto destination = resolved(to, displays, focused);
    if (const auto* error = std::get_if<CommandResult>(&destination)) {
        return *error;
    }
    const WindowMoveResult moved =
        WindowMover::moveWindows(DisplaySnapshot::placeholder(std::get<DisplayDescriptor>(source)),
                                 DisplaySnapshot::placeholder(std::get<DisplayDescriptor>(destination)), adjusts(size),
                                 std::nullopt, false)
            .counts;
    return CommandResult::moves(moved.movedCount, moved.attemptedCount, WindowMoveStatus::allWindows(moved));
}

CommandResult CommandService::moveApplication(const QString& application, const QString& to, SizeMode size) const {
    if (std::optional<CommandResult> refused = unavailable()) {
        return *refused;
    }
    // The application by name as the panel shows it, or by process id.
    bool isPid = false;
    const qint64 pid = application.toLongLong(&isPid);
    std::optional<RunningApplication> found;
    for (const RunningApplication& running : Platform::services().runningApplications->runningApplications()) {
        if (running.policy != ApplicationPolicy::Regular || running.terminated) {
            continue;
        }
        if ((isPid && running.pid == pid) ||
            (!isPid && running.name.value_or(QString()).compare(application.trimmed(), Qt::CaseInsensitive) == 0)) {
            found = running;
            break;
        }
    }
    if (!found) {
        return CommandResult::error(
            CommandResult::Kind::BadArguments, CommandErrors::noSuchApplication,
            QCoreApplication::translate("CommandService", "No running application is called \"%1\".").arg(application));
    }

    const QList<DisplayDescriptor> displays = ScreenSnapshotService::currentDisplayDescriptors();
    const auto target = resolved(to, displays, focusedMonitor(displays));
    if (const auto* error = std::get_if<CommandResult>(&target)) {
        return *error;
    }
    const DisplayDescriptor& destination = std::get<DisplayDescriptor>(target);
    QList<WindowMover::MoveLeg> legs;
    for (const DisplayDescriptor& source : displays) {
        if (source.persistentID != destination.persistentID) {
            legs.append({DisplaySnapshot::placeholder(source), DisplaySnapshot::placeholder(destination)});
        }
    }
    const WindowMoveResult total = WindowMover::moveWindows(legs, adjusts(size), QSet<pid_t>{found->pid}, true).counts;
    const QString name = found->name.value_or(application);
    return CommandResult::moves(total.movedCount, total.attemptedCount,
                                WindowMoveStatus::applicationWindows(total, name));
}

CommandResult CommandService::swap(const QString& first, const QString& second, SizeMode size) const {
    if (std::optional<CommandResult> refused = unavailable()) {
        return *refused;
    }
    const QList<DisplayDescriptor> displays = ScreenSnapshotService::currentDisplayDescriptors();
    const std::optional<DisplayDescriptor> focused = focusedMonitor(displays);
    const auto one = resolved(first, displays, focused);
    if (const auto* error = std::get_if<CommandResult>(&one)) {
        return *error;
    }
    const auto other = resolved(second, displays, focused);
    if (const auto* error = std::get_if<CommandResult>(&other)) {
        return *error;
    }
    const DisplaySnapshot a = DisplaySnapshot::placeholder(std::get<DisplayDescriptor>(one));
    const DisplaySnapshot b = DisplaySnapshot::placeholder(std::get<DisplayDescriptor>(other));
    if (a.persistentID == b.persistentID) {
        return CommandResult::error(
            CommandResult::Kind::BadArguments, CommandErrors::invalidArgument,
            QCoreApplication::translate("CommandService", "\"%1\" and \"%2\" are the same monitor, %3.")
                .arg(first, second, a.name));
    }
    const WindowMoveResult moved =
        WindowMover::moveWindows({{a, b}, {b, a}}, adjusts(size), std::nullopt, false).counts;
    return CommandResult::moves(moved.movedCount, moved.attemptedCount, WindowMoveStatus::allWindows(moved));
}
