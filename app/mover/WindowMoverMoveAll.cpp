// SPDX-License-Identifier: MIT
#include <QStringList>
#include <cmath>

#include "app/model/Geometry.h"
#include "app/mover/WindowMoveLog.h"
#include "app/mover/WindowMover.h"
#include "app/mover/WindowMoverBatch.h"
#include "platform/Platform.h"
#include "platform/RunningApplications.h"

using WindowMoveLog::boolean;
using WindowMoveLog::describe;
using WindowMoveLog::fraction;

namespace {

// What a move needs to know about one window before it is moved.
struct WindowBeforeMove {
    WindowId window = 0;
    std::optional<QRectF> frame;
};

// Each window with its frame from the facts read with it.
QList<WindowBeforeMove> withFrames(const QList<WindowId>& windows, const QList<WindowFacts>& facts) {
    QList<WindowBeforeMove> read;
    for (qsizetype i = 0; i < windows.size(); ++i) {
        const Reading<QRectF> frame = facts.value(i).frame;
        read.append({windows[i], frame.result == Result::Ok ? frame.value : std::nullopt});
    }
    return read;
}

QString centerText(const QPointF& center) {
    return QStringLiteral("(%1,%2)").arg(fraction(center.x()), fraction(center.y()));
}

// The frame after a move: what reads back when usable, else the planned frame.
QRectF postMoveFrame(const std::optional<QRectF>& read, const QRectF& planned) {
    return WindowMover::usableFrame(read).value_or(planned);
}

// Everything one window's move needs besides the window.
struct MovePlan {
    QString label;
    QString windowID;
    QRectF frame;
    QRectF source;
    QRectF destination;
    QPointF center;
    bool centerLike = false;
};

// A window whose move is planned, with the index of its record in the report.
struct PlannedMove {
    WindowId window = 0;
    qsizetype record = 0;
    MovePlan plan;
};

QList<WindowId> windowsOf(const QList<PlannedMove>& moves) {
    QList<WindowId> windows;
    for (const PlannedMove& move : moves) {
        windows.append(move.window);
    }
    return windows;
}

// Moves every planned window in one batch and reads back in one those whose frame the window control
// did not tell with its result; fills each record's writes, target and frame after. The outcome is Moved or NotMoved.
void moveKeepingSize(const QList<PlannedMove>& moves, WindowMoveReport& report) {
    QList<WindowPlacement> placements;
    for (const PlannedMove& move : moves) {
        const QSizeF size = move.plan.frame.size();
        placements.append(
            {move.window, WindowMover::destinationOrigin(move.plan.center, size, move.plan.destination), std::nullopt});
    }
    const QList<PlacementResult> results = WindowMover::place(placements);
    const QList<std::optional<QRectF>> after = WindowMover::framesAfter(windowsOf(moves), results);

    for (qsizetype i = 0; i < moves.size(); ++i) {
        const MovePlan& plan = moves[i].plan;
        WindowMoveRecord& record = report.windows[moves[i].record];
        const QSizeF size = plan.frame.size();
        const QPointF origin = placements[i].topLeft;
        const Result positionError = results[i].position;
        const QRectF post = postMoveFrame(after.value(i), QRectF(origin, size));
        const QPointF postCenter = WindowMover::normalizedCenter(post, plan.destination);
        const bool moved = positionError == Result::Ok;
        if (!moved) {
            qCDebug(lcMover).noquote() << QStringLiteral(
                                              "%1: failed setPosition (keep size) windowID=%2, error=%3, frame=%4, "
                                              "target=%5")
                                              .arg(plan.label, plan.windowID, WindowMoveLog::errorName(positionError),
                                                   describe(plan.frame), describe(origin));
        }
        WindowMover::moveDiagLog(QStringLiteral("RESULT app=%1, windowID=%2, centerLike=%3, keepSize=true, posErr=%4, "
                                                "targetOrigin=%5, postFrame=%6, postNormalizedCenter=%7")
                                     .arg(plan.label, plan.windowID, boolean(plan.centerLike),
                                          WindowMoveLog::errorName(positionError), describe(origin), describe(post),
                                          centerText(postCenter)));
        record.outcome = moved ? WindowMoveOutcome::Moved : WindowMoveOutcome::NotMoved;
        record.writes.position = positionError;
        record.targetOrigin = origin;
        record.targetSize = size;
        record.frameAfter = post;
    }
}

// Places and sizes every planned window in one batch, reads the sizes they took, and places them again
// by those sizes in a second batch, with each centre measured on its source display. The size asked for
// is in whole pixels, as the window manager applies it: a window that takes it is placed the second time
// exactly where the first placement put it, which the window control confirms without waiting.
void moveAdjustingSize(const QList<PlannedMove>& moves, WindowMoveReport& report) {
    QList<WindowPlacement> first;
    for (const PlannedMove& move : moves) {
        const QSizeF targetSize = WindowMover::wholePixelSize(
            WindowMover::adjustedSize(move.plan.frame, move.plan.source, move.plan.destination), move.plan.destination);
        first.append({move.window, WindowMover::destinationOrigin(move.plan.center, targetSize, move.plan.destination),
                      targetSize});
    }
    const QList<PlacementResult> firstResults = WindowMover::place(first);
    const QList<WindowId> windows = windowsOf(moves);
    const QList<std::optional<QRectF>> resized = WindowMover::framesAfter(windows, firstResults);

    QList<WindowPlacement> final;
    QList<QSizeF> actualSizes;
    QList<QPointF> positionsAfterResize;
    for (qsizetype i = 0; i < moves.size(); ++i) {
        const MovePlan& plan = moves[i].plan;
        const std::optional<QRectF> read = resized.value(i);
        const std::optional<QRectF> usable = WindowMover::usableFrame(read);
        actualSizes.append(usable ? usable->size() : *first[i].size);
        positionsAfterResize.append(read ? read->topLeft() : plan.frame.topLeft());
        final.append({moves[i].window, WindowMover::destinationOrigin(plan.center, actualSizes[i], plan.destination),
                      std::nullopt});
    }
    const QList<PlacementResult> finalResults = WindowMover::place(final);
    const QList<std::optional<QRectF>> after = WindowMover::framesAfter(windows, finalResults);

    for (qsizetype i = 0; i < moves.size(); ++i) {
        const MovePlan& plan = moves[i].plan;
        WindowMoveRecord& record = report.windows[moves[i].record];
        const QSizeF targetSize = *first[i].size;
        const QPointF desiredOrigin = first[i].topLeft;
        const QSizeF actualSize = actualSizes[i];
        const QPointF positionAfterResize = positionsAfterResize[i];
        const QPointF finalOrigin = final[i].topLeft;
        const Result initialError = firstResults[i].position;
        const Result sizeError = firstResults[i].size.value_or(Result::Failure);
        const Result finalError = finalResults[i].position;

        const bool sizeChanged = std::fabs(actualSize.width() - plan.frame.width()) > 1.0 ||
                                 std::fabs(actualSize.height() - plan.frame.height()) > 1.0;
        if (sizeError != Result::Ok || !sizeChanged) {
            const NormalizedRect n = WindowMover::normalizedRect(plan.frame, plan.source);
            qCDebug(lcMover).noquote() << QStringLiteral(
                                              "%1: resize status windowID=%2, sizeErr=%3, sizeChanged=%4, "
                                              "before=%5, target=%6, actual=%7, normalizedSize=(%8,%9)")
                                              .arg(plan.label, plan.windowID, WindowMoveLog::errorName(sizeError),
                                                   boolean(sizeChanged), describe(plan.frame.size()),
                                                   describe(targetSize), describe(actualSize), fraction(n.width),
                                                   fraction(n.height));
        }

        // A window that ends up in place counts as moved even when the writes reported errors.
        const bool alreadyInPlace = std::fabs(positionAfterResize.x() - finalOrigin.x()) <= 1.5 &&
                                    std::fabs(positionAfterResize.y() - finalOrigin.y()) <= 1.5;
        const bool moved = initialError == Result::Ok || finalError == Result::Ok || alreadyInPlace;
        if (!moved) {
            qCDebug(lcMover).noquote() << QStringLiteral(
                                              "%1: failed setPosition windowID=%2, initialError=%3, finalError=%4, "
                                              "frame=%5, target=%6")
                                              .arg(plan.label, plan.windowID, WindowMoveLog::errorName(initialError),
                                                   WindowMoveLog::errorName(finalError), describe(plan.frame),
                                                   describe(finalOrigin));
        }

        const QRectF post = postMoveFrame(after.value(i), QRectF(finalOrigin, actualSize));
        const QPointF postCenter = WindowMover::normalizedCenter(post, plan.destination);
        WindowMover::moveDiagLog(
            QStringLiteral("RESULT app=%1, windowID=%2, centerLike=%3, initialPosErr=%4, sizeErr=%5, "
                           "finalPosErr=%6, targetSize=%7, actualSize=%8, desiredOrigin=%9, finalOrigin=%10, "
                           "postFrame=%11, postNormalizedCenter=%12")
                .arg(plan.label, plan.windowID, boolean(plan.centerLike), WindowMoveLog::errorName(initialError),
                     WindowMoveLog::errorName(sizeError), WindowMoveLog::errorName(finalError), describe(targetSize),
                     describe(actualSize), describe(desiredOrigin), describe(finalOrigin), describe(post),
                     centerText(postCenter)));
        record.outcome = moved ? WindowMoveOutcome::Moved : WindowMoveOutcome::NotMoved;
        record.writes = {initialError, sizeError, finalError};
        record.targetOrigin = finalOrigin;
        record.targetSize = targetSize;
        record.frameAfter = post;
    }
}

QString applicationLabel(const RunningApplication& application) {
    return QStringLiteral("%1 [pid:%2]")
        .arg(application.name.value_or(QStringLiteral("Unknown App")), QString::number(application.pid));
}

QString targetPIDList(const std::optional<QSet<pid_t>>& targetPIDs) {
    if (!targetPIDs) {
        return QStringLiteral("all");
    }
    QStringList pids;
    for (pid_t pid : *targetPIDs) {
        pids.append(QString::number(pid));
    }
    return pids.join(QLatin1Char(','));
}

QString displayLabel(const DisplaySnapshot& display) {
    return QStringLiteral("%1#%2").arg(display.name).arg(display.index);
}

// One source and destination of the move, with the window numbers the window list places on the source.
struct LegContext {
    DisplaySnapshot sourceDisplay;
    DisplaySnapshot destinationDisplay;
    QHash<pid_t, QSet<qint64>> sourceIDs;
};

// What every window of one move shares.
struct MoveContext {
    QHash<QString, QRectF> frames;
    QList<LegContext> legs;
    bool adjustSize = false;
};

// A window's frame and where it came from: the window control, else the window list mirrored inside
// the source.
std::optional<std::pair<QRectF, FrameSource>> windowFrame(const WindowBeforeMove& window, pid_t pid,
                                                          const MoveContext& move, const QRectF& source) {
    if (const std::optional<QRectF> read = WindowMover::usableFrame(window.frame)) {
        return std::pair{*read, FrameSource::WindowControl};
    }
    const auto found = move.frames.constFind(WindowMover::windowListKey(pid, window.window));
    if (found != move.frames.cend()) {
        return std::pair{WindowMover::convertedWindowListFrame(*found, source), FrameSource::WindowList};
    }
    return std::nullopt;
}

// The leg a window goes with: the first whose source the window list places it on, else the first
// whose source its frame overlaps; nothing when it is on no leg's source.
std::optional<qsizetype> legOf(const WindowBeforeMove& window, pid_t pid, const MoveContext& move) {
    for (qsizetype i = 0; i < move.legs.size(); ++i) {
        if (move.legs[i].sourceIDs.value(pid).contains(window.window)) {
            return i;
        }
    }
    for (qsizetype i = 0; i < move.legs.size(); ++i) {
        const QRectF& source = move.legs[i].sourceDisplay.bounds;
        const auto frame = windowFrame(window, pid, move, source);
        if (frame && Geometry::intersects(frame->first, source)) {
            return i;
        }
    }
    return std::nullopt;
}

// The name the diagnostic lines give a frame's source.
QString frameSourceName(FrameSource source) {
    return source == FrameSource::WindowControl ? QStringLiteral("AX") : QStringLiteral("CGFallbackConverted");
}

// Why the application is left alone as a whole, before its windows are read.
std::optional<ApplicationSkipReason> skipReason(const RunningApplication& application,
                                                const std::optional<QSet<pid_t>>& targetPIDs) {
    if (application.policy != ApplicationPolicy::Regular) {
        return ApplicationSkipReason::NotRegular;
    }
    if (application.terminated) {
        return ApplicationSkipReason::Terminated;
    }
    if (application.pid < 1) {
        return ApplicationSkipReason::InvalidPid;
    }
    if (targetPIDs && !targetPIDs->contains(application.pid)) {
        return ApplicationSkipReason::NotTargeted;
    }
    return std::nullopt;
}

// An application's windows and their frames, read before anything moves.
struct ApplicationToMove {
    pid_t pid = 0;
    QString label;
    QList<WindowBeforeMove> windows;
};

// Reads the windows of the applications in one batch, and their frames in another. In the order of the
// running applications: the applications to move, and a skip record for each application left alone
// (by its reason, or because it has no windows).
QList<ApplicationToMove> readApplicationWindows(const QList<RunningApplication>& running,
                                                const std::optional<QSet<pid_t>>& targetPIDs,
                                                WindowMoveReport& report) {
    QList<std::optional<ApplicationSkipReason>> reasons;
    QList<pid_t> pids;
    QStringList labels;
    for (const RunningApplication& application : running) {
        reasons.append(skipReason(application, targetPIDs));
        if (!reasons.constLast()) {
            pids.append(application.pid);
            labels.append(applicationLabel(application));
        }
    }
    const QList<MovableWindowsWithFacts> movable = WindowMover::movableWindows(pids, labels);
    QList<ApplicationToMove> applications;
    qsizetype read = 0;
    for (qsizetype i = 0; i < running.size(); ++i) {
        const pid_t pid = running[i].pid;
        if (reasons[i]) {
            report.skippedApplications.append({pid, *reasons[i]});
            continue;
        }
        const QString& label = labels[read];
        const MovableWindowsWithFacts& found = movable.value(read++);
        if (!found.movable.windows) {
            qCDebug(lcMover).noquote() << label + QStringLiteral(": no accessible windows returned");
            report.skippedApplications.append({pid, ApplicationSkipReason::NoWindows, found.movable.visibleList,
                                               found.movable.includingMinimisedList});
            continue;
        }
        applications.append({pid, label, withFrames(*found.movable.windows, found.facts)});
    }
    return applications;
}

// The process ids of the regular applications that still run, as the window list's filters count them.
QSet<pid_t> regularApplicationPIDs(const QList<RunningApplication>& running) {
    QSet<pid_t> pids;
    for (const RunningApplication& application : running) {
        if (application.policy == ApplicationPolicy::Regular && !application.terminated) {
            pids.insert(application.pid);
        }
    }
    return pids;
}

// Plans one window's move from its leg's source to the leg's destination; nothing (and the record's
// outcome) when it cannot be moved.
std::optional<MovePlan> planWindow(const WindowBeforeMove& window, const ApplicationToMove& application,
                                   const QRectF& frame, FrameSource frameSource, const LegContext& leg, bool adjustSize,
                                   WindowMoveRecord& record) {
    const QString& label = application.label;
    const QString windowIDText = QString::number(window.window);
    const QRectF& S = leg.sourceDisplay.bounds;
    if (!(S.width() > 0 && S.height() > 0)) {
        qCDebug(lcMover).noquote() << label + QStringLiteral(": invalid source bounds, skipping resize/move");
        record.outcome = WindowMoveOutcome::SkippedInvalidSourceBounds;
        return std::nullopt;
    }
    const NormalizedRect n = WindowMover::normalizedRect(frame, S);
    const QPointF center = WindowMover::normalizedCenter(frame, S);
    const MovePlan plan{
        label, windowIDText, frame, S, leg.destinationDisplay.bounds, center, WindowMover::isCenterLike(center)};
    WindowMover::moveDiagLog(
        QStringLiteral("START app=%1, windowID=%2, frameSource=%3, centerLike=%4, adjustSize=%5, frame=%6, "
                       "normalizedCenter=%7, normalizedRect=(%8,%9,%10,%11)")
            .arg(label, windowIDText, frameSourceName(frameSource), boolean(plan.centerLike), boolean(adjustSize),
                 describe(frame), centerText(center), fraction(n.x), fraction(n.y), fraction(n.width),
                 fraction(n.height)));
    return plan;
}

// The records of one application's windows in the report, and how many of them were attempted.
struct ApplicationRecords {
    qsizetype first = 0;
    qsizetype end = 0;
    int attempted = 0;
};

// Adds a record for each of the application's windows and plans the move of those on a leg's source.
ApplicationRecords planApplicationWindows(const ApplicationToMove& application, const MoveContext& move,
                                          WindowMoveReport& report, QList<PlannedMove>& planned) {
    const pid_t pid = application.pid;
    const QString& label = application.label;
    qsizetype sourceCount = 0;
    for (const LegContext& leg : move.legs) {
        sourceCount += leg.sourceIDs.value(pid).size();
    }
    qCDebug(lcMover).noquote() << QStringLiteral("%1: mergedAXWindows=%2, sourceWindowIDs=%3")
                                      .arg(label, QString::number(application.windows.size()),
                                           QString::number(sourceCount));

    ApplicationRecords records{report.windows.size(), report.windows.size(), 0};
    for (const WindowBeforeMove& window : application.windows) {
        const qsizetype index = report.windows.size();
        WindowMoveRecord& record = report.windows.emplace_back();
        record.pid = pid;
        record.window = window.window;
        const std::optional<qsizetype> leg = legOf(window, pid, move);
        const QRectF& measuredBy = move.legs[leg.value_or(0)].sourceDisplay.bounds;
        const auto frameAndSource = windowFrame(window, pid, move, measuredBy);
        if (!frameAndSource) {
            qCDebug(lcMover).noquote() << QStringLiteral("%1: skip window without frame, windowID=%2")
                                              .arg(label, QString::number(window.window));
            record.outcome = WindowMoveOutcome::SkippedWithoutFrame;
            continue;
        }
        const auto& [frame, frameSource] = *frameAndSource;
        record.frameSource = frameSource;
        record.frameBefore = frame;
        if (!leg) {
            record.outcome = WindowMoveOutcome::NotOnSourceDisplay;
            continue;
        }
        ++records.attempted;
        if (std::optional<MovePlan> plan =
                planWindow(window, application, frame, frameSource, move.legs[*leg], move.adjustSize, record)) {
            planned.append({window.window, index, std::move(*plan)});
        }
    }
    records.end = report.windows.size();
    return records;
}

// Counts what the application's moves did and, on request, shows the windows that moved.
void finishApplication(const ApplicationToMove& application, const ApplicationRecords& records, bool revealMovedWindows,
                       WindowMoveReport& report) {
    QList<WindowId> moved;
    for (qsizetype i = records.first; i < records.end; ++i) {
        if (report.windows[i].outcome == WindowMoveOutcome::Moved) {
            moved.append(report.windows[i].window);
        }
    }
    qCDebug(lcMover).noquote() << QStringLiteral("%1: attempted=%2, moved=%3")
                                      .arg(application.label, QString::number(records.attempted),
                                           QString::number(moved.size()));
    // Shown only after they have been moved, so a hidden or minimised window appears in its new place.
    if (revealMovedWindows && !moved.isEmpty()) {
        WindowMover::revealMovedWindowsForApplication(moved, application.pid, application.label);
    }
    report.counts.movedCount += static_cast<int>(moved.size());
    report.counts.attemptedCount += records.attempted;
}

void logLegStart(const LegContext& leg, const std::optional<QSet<pid_t>>& targetPIDs) {
    qsizetype sourceWindowCount = 0;
    for (const QSet<qint64>& ids : leg.sourceIDs) {
        sourceWindowCount += ids.size();
    }
    qCDebug(lcMover).noquote() << QStringLiteral(
                                      "moveAllWindows start: source=%1 -> destination=%2, sourceWindowIDsAcrossApps=%3")
                                      .arg(displayLabel(leg.sourceDisplay), displayLabel(leg.destinationDisplay),
                                           QString::number(sourceWindowCount));
    WindowMover::moveDiagLog(
        QStringLiteral("BEGIN source=%1 sourceAX=%2 sourceCG=%2 destination=%3 destAX=%4 destCG=%4 "
                       "targetPIDs=%5")
            .arg(displayLabel(leg.sourceDisplay), describe(leg.sourceDisplay.bounds),
                 displayLabel(leg.destinationDisplay), describe(leg.destinationDisplay.bounds),
                 targetPIDList(targetPIDs)));
}

}  // namespace

WindowMoveReport WindowMover::moveWindows(const DisplaySnapshot& source, const DisplaySnapshot& destination,
                                          bool adjustSizeToDestination, const std::optional<QSet<pid_t>>& targetPIDs,
                                          bool revealMovedWindows) {
    return moveWindows(QList<MoveLeg>{{source, destination}}, adjustSizeToDestination, targetPIDs, revealMovedWindows);
}

WindowMoveReport WindowMover::moveWindows(const QList<MoveLeg>& legs, bool adjustSizeToDestination,
                                          const std::optional<QSet<pid_t>>& targetPIDs, bool revealMovedWindows) {
    WindowMoveReport report;
    if (legs.isEmpty()) {
        return report;
    }
    // Every look-up reads one copy of the window list: listing is the costly part with many windows.
    const std::optional<QList<WindowEntry>> windowList = windowListIncludingOffscreen();
    // The running applications are read once too, for the window list's owners and for the moves.
    const QList<RunningApplication> running = Platform::services().runningApplications->runningApplications();
    const QSet<pid_t> regular = regularApplicationPIDs(running);
    MoveContext move;
    move.frames = allWindowFramesByOwnerAndWindowID(windowList);
    move.adjustSize = adjustSizeToDestination;
    for (const MoveLeg& leg : legs) {
        move.legs.append(
            {leg.source, leg.destination, sourceWindowIDsByOwnerPID(leg.source.bounds, windowList, regular)});
        logLegStart(move.legs.constLast(), targetPIDs);
    }

    // Every window is read before the first one moves, so that the set is fixed: a window moved onto
    // another leg's source is not taken along a second time.
    const QList<ApplicationToMove> applications = readApplicationWindows(running, targetPIDs, report);
    // The whole plan goes to the window control at once: where every change is a round trip to the
    // window manager, one batch costs about as much as one window.
    QList<PlannedMove> planned;
    QList<ApplicationRecords> records;
    for (const ApplicationToMove& application : applications) {
        records.append(planApplicationWindows(application, move, report, planned));
    }
    if (!planned.isEmpty()) {
        if (move.adjustSize) {
            moveAdjustingSize(planned, report);
        } else {
            moveKeepingSize(planned, report);
        }
    }
    for (qsizetype i = 0; i < applications.size(); ++i) {
        finishApplication(applications[i], records[i], revealMovedWindows, report);
    }

    qCDebug(lcMover).noquote() << QStringLiteral("moveAllWindows done: attempted=%1, moved=%2")
                                      .arg(QString::number(report.counts.attemptedCount),
                                           QString::number(report.counts.movedCount));
    return report;
}
