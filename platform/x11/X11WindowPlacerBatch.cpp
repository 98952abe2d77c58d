// SPDX-License-Identifier: MIT
// Placing many windows at once: the requests of the whole batch are in flight together, so the batch
// waits for the window manager about as long as its slowest window, not for each window in turn.
#include <QLoggingCategory>
#include <QSet>
#include <algorithm>

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11WindowEvents.h"
#include "platform/x11/X11WindowPlacer.h"
#include "platform/x11/X11WindowReader.h"

Q_DECLARE_LOGGING_CATEGORY(lcPlacer)

QList<PlacementResult> X11WindowPlacer::place(const QList<Placement>& placements) {
    QList<PlacementResult> results(placements.size());
    QList<X11WindowReader::Request> requests;
    for (const Placement& placement : placements) {
        requests.append({placement.window, kPlacementFields});
    }
    const QList<X11WindowFacts> before = m_reader.readWindows(requests);
    // Events about these windows that came before the read are old news; only what follows the requests
    // below may confirm them.
    m_connection.dispatchPendingEvents();

    QList<SentPlacement> sent;
    QList<qsizetype> oneByOne;
    QSet<xcb_window_t> seen;
    for (qsizetype i = 0; i < placements.size(); ++i) {
        const Placement& placement = placements[i];
        const X11WindowFacts facts = before.value(i);
        const auto sizeResult = [&placement](Result result) {
            return placement.frameSize ? std::optional(result) : std::nullopt;
        };
        if (!facts.exists) {
            results[i] = {Result::Gone, sizeResult(Result::Gone)};
            continue;
        }
        // A window in a size state leaves it and enters it again around the move, in steps of its own; a
        // window asked for twice is placed again after the batch.
        if (!sizeStates(facts).isEmpty() || seen.contains(placement.window)) {
            oneByOne.append(i);
            continue;
        }
        seen.insert(placement.window);
        watch(placement.window);
        SentPlacement entry;
        entry.index = i;
        entry.facts = facts;
        entry.beforeTopLeft = facts.outerFrame().topLeft();
        entry.beforeSize = facts.outerFrame().size();
        entry.moves = entry.beforeTopLeft != placement.rootTopLeft;
        entry.resizes = placement.frameSize && entry.beforeSize != *placement.frameSize;
        // Already where and as large as asked: the window manager would report nothing, so there is
        // nothing to wait for.
        if (!entry.moves && !entry.resizes) {
            results[i] = {Result::Ok, sizeResult(Result::Ok), QRectF(facts.outerFrame())};
            continue;
        }
        sendPlacement(entry, placement, entry.resizes);
        sent.append(entry);
    }
    awaitPlacements(sent, placements);

    // A frame that landed about a decoration away from its target is aimed at once more, as a single move
    // would be; the first such landing also teaches which corner this window manager places.
    QList<qsizetype> aimedAgain;
    for (qsizetype k = 0; k < sent.size(); ++k) {
        SentPlacement& entry = sent[k];
        const Placement& placement = placements[entry.index];
        const QPoint at = entry.facts.outerFrame().topLeft();
        const QPoint offBy = at - placement.rootTopLeft;
        if (!entry.facts.exists || !entry.moves || at == placement.rootTopLeft || at == entry.beforeTopLeft ||
            offBy.manhattanLength() > kDecorationSlack) {
            continue;
        }
        const QPoint decorations = decorationOffset(before[entry.index]);
        if (!m_positionIsClientCorner && !decorations.isNull() && offBy == -decorations) {
            qCDebug(lcPlacer) << "window manager reads move positions as the client's corner";
            m_positionIsClientCorner = true;
        }
        aimedAgain.append(k);
    }
    for (qsizetype k : aimedAgain) {
        SentPlacement& entry = sent[k];
        entry.confirmed = false;
        entry.hasNews = false;
        sendPlacement(entry, placements[entry.index], false);
    }
    if (!aimedAgain.isEmpty()) {
        awaitPlacements(sent, placements);
    }

    for (const SentPlacement& entry : sent) {
        const Placement& placement = placements[entry.index];
        results[entry.index] = outcome(entry, placement);
        qCDebug(lcPlacer) << "placed" << placement.window << "at" << placement.rootTopLeft << "size"
                          << placement.frameSize.value_or(QSize()) << "confirmed" << entry.confirmed << "frame"
                          << entry.facts.outerFrame();
    }
    for (qsizetype i : oneByOne) {
        const Placement& placement = placements[i];
        results[i].position = moveFrame(placement.window, placement.rootTopLeft);
        if (placement.frameSize) {
            results[i].size = resizeFrame(placement.window, *placement.frameSize);
        }
    }
    return results;
}

void X11WindowPlacer::sendPlacement(const SentPlacement& sent, const Placement& placement, bool withSize) {
    const X11WindowFacts& facts = sent.facts;
    std::optional<QPoint> position;
    if (sent.moves) {
        position = m_positionIsClientCorner ? placement.rootTopLeft + decorationOffset(facts) : placement.rootTopLeft;
    }
    std::optional<QSize> clientSize;
    if (withSize) {
        const QSize decorations(facts.frameExtents.left() + facts.frameExtents.right() + 2 * facts.borderWidth,
                                facts.frameExtents.top() + facts.frameExtents.bottom() + 2 * facts.borderWidth);
        clientSize = (*placement.frameSize - decorations).expandedTo(QSize(1, 1));
    }
    sendMoveResize(placement.window, position, clientSize);
}

bool X11WindowPlacer::isPlaced(const SentPlacement& sent, const Placement& placement) const {
    const QRect frame = sent.facts.outerFrame();
    return (!sent.moves || frame.topLeft() == placement.rootTopLeft) &&
           (!sent.resizes || frame.size() == *placement.frameSize);
}

bool X11WindowPlacer::takeReport(xcb_generic_event_t* event, QList<SentPlacement>& sent,
                                 const QHash<xcb_window_t, qsizetype>& byWindow, const QList<Placement>& placements) {
    const qsizetype k = byWindow.value(X11WindowEvents::subject(event), -1);
    if (k < 0) {
        return false;
    }
    SentPlacement& entry = sent[k];
    if (entry.confirmed) {
        return true;
    }
    if ((event->response_type & 0x7f) != XCB_CONFIGURE_NOTIFY) {
        entry.hasNews = true;
        return true;
    }
    // The X server reports a new size; ICCCM has window managers report a move with a synthetic event
    // in root coordinates (the corner outside the border). A real event's position is inside the frame.
    const auto* configure = reinterpret_cast<xcb_configure_notify_event_t*>(event);
    entry.facts.borderWidth = configure->border_width;
    entry.facts.clientRect.setSize(QSize(configure->width, configure->height));
    if ((event->response_type & 0x80) != 0) {
        entry.facts.clientRect.moveTopLeft(QPoint(configure->x, configure->y) +
                                           QPoint(configure->border_width, configure->border_width));
    }
    entry.confirmed = isPlaced(entry, placements[entry.index]);
    entry.hasNews = !entry.confirmed;
    return true;
}

void X11WindowPlacer::readAgain(QList<SentPlacement>& sent, const QList<qsizetype>& which,
                                const QList<Placement>& placements) {
    if (which.isEmpty()) {
        return;
    }
    QList<X11WindowReader::Request> requests;
    for (qsizetype k : which) {
        requests.append({placements[sent[k].index].window, kPlacementFields});
    }
    const QList<X11WindowFacts> read = m_reader.readWindows(requests);
    for (qsizetype j = 0; j < which.size(); ++j) {
        SentPlacement& entry = sent[which[j]];
        entry.facts = read.value(j);
        entry.hasNews = false;
        entry.confirmed = !entry.facts.exists || isPlaced(entry, placements[entry.index]);
    }
}

void X11WindowPlacer::awaitPlacements(QList<SentPlacement>& sent, const QList<Placement>& placements) {
    QHash<xcb_window_t, qsizetype> byWindow;
    for (qsizetype k = 0; k < sent.size(); ++k) {
        if (!sent[k].confirmed) {
            byWindow.insert(placements[sent[k].index].window, k);
        }
    }
    auto unconfirmed = [&] {
        QList<qsizetype> open;
        for (qsizetype k : std::as_const(byWindow)) {
            if (!sent[k].confirmed) {
                open.append(k);
            }
        }
        return open;
    };
    // How far the window manager has got: the windows it has confirmed, and those it has answered at all.
    QSet<qsizetype> answered;
    auto progress = [&] {
        qsizetype confirmed = 0;
        for (qsizetype k : std::as_const(byWindow)) {
            if (sent[k].hasNews || sent[k].confirmed) {
                answered.insert(k);
            }
            confirmed += sent[k].confirmed ? 1 : 0;
        }
        return confirmed + answered.size();
    };
    auto takeReport = [&](xcb_generic_event_t* event) { return this->takeReport(event, sent, byWindow, placements); };
    auto takeEveryReport = [&](xcb_generic_event_t* event) {
        this->takeReport(event, sent, byWindow, placements);
        return false;
    };
    m_connection.flush();
    qsizetype reached = progress();
    // The time limit counts from the window manager's last answer: one working through a large batch
    // is answering, however long the whole batch takes.
    QDeadlineTimer deadline(kConfirmationMilliseconds);
    while (!unconfirmed().isEmpty()) {
        const qint64 remaining = deadline.remainingTime();
        if (remaining <= 0 || !m_connection.waitForEvent(takeReport, static_cast<int>(remaining))) {
            break;
        }
        // Every report that has already come is taken before anything is read.
        m_connection.waitForEvent(takeEveryReport, 0);
        // Some window managers report a move that comes with a new size only by the size (the X server's
        // own event, with a position inside the frame), and some tell other news first. Such windows are
        // read together once the window manager has answered for every window of the batch: it works
        // through the requests in order, so by then it is done with each of them.
        const QList<qsizetype> open = unconfirmed();
        const qsizetype now = progress();
        if (std::all_of(open.cbegin(), open.cend(), [&sent](qsizetype k) { return sent[k].hasNews; })) {
            readAgain(sent, open, placements);
        }
        if (now > reached) {
            reached = now;
            deadline = QDeadlineTimer(kConfirmationMilliseconds);
        }
    }
    // What the window manager did not report is read: it may have done it silently, or not at all.
    readAgain(sent, unconfirmed(), placements);
}

PlacementResult X11WindowPlacer::outcome(const SentPlacement& sent, const Placement& placement) {
    if (!sent.facts.exists) {
        return {Result::Gone, placement.frameSize ? std::optional(Result::Gone) : std::nullopt};
    }
    // A window manager that keeps windows where it likes, or at a size it likes, has still answered.
    const QRect frame = sent.facts.outerFrame();
    const QPoint target = placement.rootTopLeft;
    PlacementResult result;
    // Taken from the window manager's report of the change or from a read made once it had answered.
    result.frame = QRectF(frame);
    result.position = !sent.moves || frame.topLeft() == target || frame.topLeft() != sent.beforeTopLeft
                          ? Result::Ok
                          : Result::CannotComplete;
    if (placement.frameSize) {
        result.size = !sent.resizes || frame.size() == *placement.frameSize || frame.size() != sent.beforeSize
                          ? Result::Ok
                          : Result::CannotComplete;
    }
    return result;
}
