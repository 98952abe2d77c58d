// SPDX-License-Identifier: MIT
#include "platform/x11/X11WindowControl.h"

#include <QFileInfo>
#include <QSet>
#include <cmath>

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Ewmh.h"

namespace {

// How long the answer to "is a window manager running" is trusted.
constexpr int kWmCheckMilliseconds = 1000;

bool isWindowNumber(qint64 identifier) {
    return identifier > 0 && identifier <= 0xFFFFFFFFll;
}

bool isProcessNumber(qint64 pid) {
    return pid > 0 && pid <= 0x7fffffff;
}

template <typename T>
Reading<T> failed(Result result) {
    return {result, std::nullopt};
}

template <typename T>
Reading<T> ok(T value) {
    return {Result::Ok, std::move(value)};
}

}  // namespace

X11WindowControl::X11WindowControl(X11Connection& connection, X11WindowCache* cache)
    : m_connection(connection),
      m_cache(cache),
      m_reader(connection),
      m_batchReader(connection, cache),
      m_kinds(connection),
      m_placer(connection, m_reader, m_kinds) {}

bool X11WindowControl::windowManagerRunning() {
    QMutexLocker lock(&m_wmMutex);
    if (!m_wmCheckValidUntil.hasExpired()) {
        return m_wmRunning;
    }
    m_wmRunning = X11Ewmh::windowManagerPresent(m_connection);
    m_wmCheckValidUntil = QDeadlineTimer(kWmCheckMilliseconds);
    return m_wmRunning;
}

X11WindowControl::Batch X11WindowControl::read(unsigned rootFields, const QHash<xcb_window_t, unsigned>& windowFields,
                                               bool managed, unsigned unlistedFields) {
    Batch batch;
    if (m_connection.hasError() || !windowManagerRunning()) {
        return batch;
    }
    batch.permitted = true;

    // Stage 1: what the root window says, as far as the batch needs it, and what it takes to judge which
    // window fields are worth reading.
    constexpr unsigned kManagedFields = X11WindowFacts::Pid | X11WindowFacts::Desktop | X11WindowFacts::State;
    unsigned windowFieldsAsked = unlistedFields | (managed ? kManagedFields : 0u);
    for (const unsigned fields : windowFields) {
        windowFieldsAsked |= fields;
    }
    rootFields |= X11WindowReader::rootFieldsToJudge(windowFieldsAsked);
    if (managed) {
        rootFields |= X11WindowReader::ClientList | X11WindowReader::CurrentDesktop;
    }
    if (unlistedFields != 0) {
        rootFields |= X11WindowReader::ClientList;
    }
    if (rootFields != 0) {
        batch.root = m_batchReader.readRoot(rootFields);
    }

    // Stage 2: the windows asked about, the active window's owner, and every managed window's owner,
    // desktop and state when an application's list is wanted.
    QHash<xcb_window_t, unsigned> fields = windowFields;
    if (unlistedFields != 0) {
        const QSet<xcb_window_t> listed(batch.root.clientListStacking.cbegin(), batch.root.clientListStacking.cend());
        for (auto it = fields.begin(); it != fields.end(); ++it) {
            if (!listed.contains(it.key())) {
                it.value() |= unlistedFields;
            }
        }
    }
    if (batch.root.activeWindow != XCB_NONE) {
        fields[batch.root.activeWindow] |= X11WindowFacts::Attributes | X11WindowFacts::Pid;
    }
    QList<X11WindowReader::Request> requests;
    for (auto it = fields.cbegin(); it != fields.cend(); ++it) {
        requests.append({it.key(), X11WindowReader::worthReading(it.value(), batch.root)});
    }
    const qsizetype ownCount = requests.size();
    const unsigned managedFields = X11WindowReader::worthReading(kManagedFields, batch.root);
    for (auto it = batch.root.clientListStacking.crbegin(); it != batch.root.clientListStacking.crend(); ++it) {
        requests.append({*it, managedFields});
    }
    QList<X11WindowFacts> facts = m_batchReader.readWindows(requests);
    for (qsizetype i = 0; i < facts.size(); ++i) {
        if (i < ownCount) {
            batch.windows.insert(facts[i].window, facts[i]);
        } else if (facts[i].exists) {
            facts[i].managed = true;
            batch.managed.append(facts[i]);
        }
    }
    return batch;
}

Reading<WindowId> X11WindowControl::activeOf(std::optional<pid_t> owner, const Batch& batch) const {
    if (!batch.permitted) {
        return failed<WindowId>(Result::NotPermitted);
    }
    const auto active = batch.windows.constFind(batch.root.activeWindow);
    if (batch.root.activeWindow == XCB_NONE || active == batch.windows.constEnd() || !active->exists ||
        (owner && active->pid != *owner)) {
        return failed<WindowId>(Result::NoValue);
    }
    return ok<WindowId>(active->window);
}

Reading<WindowId> X11WindowControl::focusedWindow() {
    return activeOf(std::nullopt, read(X11WindowReader::ActiveWindow, {}, false));
}

Reading<pid_t> X11WindowControl::focusedApplication() {
    const Batch batch = read(X11WindowReader::ActiveWindow, {}, false);
    const Reading<WindowId> active = activeOf(std::nullopt, batch);
    if (active.result != Result::Ok) {
        return failed<pid_t>(active.result);
    }
    const std::optional<pid_t> pid = batch.windows.value(static_cast<xcb_window_t>(*active.value)).pid;
    return pid ? ok<pid_t>(*pid) : failed<pid_t>(Result::NoValue);
}

Reading<WindowId> X11WindowControl::focusedWindow(pid_t application) {
    if (!isProcessNumber(application)) {
        return failed<WindowId>(Result::Failure);
    }
    return activeOf(application, read(X11WindowReader::ActiveWindow, {}, false));
}

Reading<WindowId> X11WindowControl::mainWindow(pid_t application) {
    // X11 knows no main window apart from the focused one.
    return focusedWindow(application);
}

QHash<pid_t, X11WindowControl::OwnedWindows> X11WindowControl::managedByOwner(const QList<X11WindowFacts>& windows) {
    QHash<pid_t, OwnedWindows> owners;
    for (const X11WindowFacts& window : windows) {
        if (window.managed && window.pid) {
            owners[*window.pid].append(&window);
        }
    }
    return owners;
}

Reading<QList<WindowId>> X11WindowControl::listOf(pid_t application, WindowScope scope, bool permitted,
                                                  const X11RootFacts& root, const OwnedWindows& owned) const {
    if (!permitted) {
        return failed<QList<WindowId>>(Result::NotPermitted);
    }
    if (!isProcessNumber(application)) {
        return failed<QList<WindowId>>(Result::Failure);
    }
    if (!root.connected) {
        return failed<QList<WindowId>>(Result::CannotComplete);
    }
    QList<WindowId> windows;
    for (const X11WindowFacts* window : owned) {
        // Windows on other workspaces are never listed, so no command moves or restores them.
        if (!m_kinds.isOnDesktop(*window, root.currentDesktop) ||
            (scope == WindowScope::Visible && m_kinds.isHidden(*window))) {
            continue;
        }
        windows.append(window->window);
    }
    // An application that owns no window any more and whose process is gone is no application at all.
    if (windows.isEmpty() && !QFileInfo::exists(QStringLiteral("/proc/%1").arg(application))) {
        return failed<QList<WindowId>>(Result::Gone);
    }
    return ok(windows);
}

Reading<QList<WindowId>> X11WindowControl::windows(pid_t application, WindowScope scope) {
    if (!isProcessNumber(application)) {
        return failed<QList<WindowId>>(Result::Failure);
    }
    const Batch batch = read(0, {}, true);
    return listOf(application, scope, batch.permitted, batch.root, managedByOwner(batch.managed).value(application));
}

QList<ApplicationWindows> X11WindowControl::windowsOfApplications(const QList<pid_t>& applications) {
    QList<ApplicationWindows> answers;
    if (applications.isEmpty()) {
        return answers;
    }
    const Batch batch = read(0, {}, true);
    const QHash<pid_t, OwnedWindows> owners = managedByOwner(batch.managed);
    for (pid_t pid : applications) {
        const OwnedWindows owned = owners.value(pid);
        answers.append({listOf(pid, WindowScope::Visible, batch.permitted, batch.root, owned),
                        listOf(pid, WindowScope::IncludingMinimised, batch.permitted, batch.root, owned)});
    }
    return answers;
}

QHash<pid_t, ApplicationWindowRoles> X11WindowControl::applicationsIn(const X11WindowTable& table,
                                                                      const QList<pid_t>& applications) {
    const bool permitted = !m_connection.hasError() && windowManagerRunning();
    const QHash<pid_t, OwnedWindows> owners = managedByOwner(table.windows);
    QHash<pid_t, ApplicationWindowRoles> answers;
    QHash<xcb_window_t, const X11WindowFacts*> listed;
    for (pid_t pid : applications) {
        const OwnedWindows owned = owners.value(pid);
        ApplicationWindowRoles& answer = answers[pid];
        answer.lists = {listOf(pid, WindowScope::Visible, permitted, table.root, owned),
                        listOf(pid, WindowScope::IncludingMinimised, permitted, table.root, owned)};
        for (const X11WindowFacts* window : owned) {
            if (m_kinds.isOnDesktop(*window, table.root.currentDesktop)) {
                listed.insert(window->window, window);
            }
        }
    }
    // The table reads WM_TRANSIENT_FOR only where a window's kind depends on it; a modal window's role
    // depends on it too.
    QList<X11WindowReader::Request> transients;
    for (const X11WindowFacts* window : std::as_const(listed)) {
        if (!(window->fieldsRead & X11WindowFacts::Transient) && m_kinds.roleNeedsTransientFor(*window)) {
            transients.append({window->window, X11WindowFacts::Transient});
        }
    }
    QHash<xcb_window_t, X11WindowFacts> transientsRead;
    if (!transients.isEmpty()) {
        for (X11WindowFacts& read : m_batchReader.readWindows(transients)) {
            transientsRead.insert(read.window, std::move(read));
        }
    }
    for (ApplicationWindowRoles& answer : answers) {
        if (answer.lists.includingMinimised.result != Result::Ok) {
            continue;
        }
        for (WindowId id : *answer.lists.includingMinimised.value) {
            const X11WindowFacts& window = *listed.value(static_cast<xcb_window_t>(id));
            const auto reread = transientsRead.constFind(window.window);
            if (reread == transientsRead.cend()) {
                answer.roles.insert(id, ok(m_kinds.role(window)));
            } else if (!reread->exists) {
                answer.roles.insert(id, failed<WindowRole>(Result::Gone));
            } else {
                X11WindowFacts withTransient = window;
                withTransient.transientFor = reread->transientFor;
                answer.roles.insert(id, ok(m_kinds.role(withTransient)));
            }
        }
    }
    return answers;
}

X11WindowControl::Batch X11WindowControl::readFacts(const QList<WindowId>& windows) {
    QHash<xcb_window_t, unsigned> fields;
    for (WindowId window : windows) {
        if (isWindowNumber(window)) {
            fields.insert(static_cast<xcb_window_t>(window),
                          X11WindowFacts::Type | X11WindowFacts::State | X11WindowFacts::Geometry);
        }
    }
    if (fields.isEmpty()) {
        Batch batch;
        batch.permitted = !m_connection.hasError() && windowManagerRunning();
        return batch;
    }
    // A window the window manager lists is not override-redirect (it manages only the others), so only
    // the others' attributes are read. WM_TRANSIENT_FOR is read afterwards for the few windows whose role
    // depends on it.
    Batch batch = read(X11WindowReader::GlobalOrigin, fields, false, X11WindowFacts::Attributes);
    QList<X11WindowReader::Request> transients;
    for (const X11WindowFacts& facts : std::as_const(batch.windows)) {
        if (facts.exists && m_kinds.roleNeedsTransientFor(facts)) {
            transients.append({facts.window, X11WindowFacts::Transient});
        }
    }
    for (const X11WindowFacts& read : m_batchReader.readWindows(transients)) {
        X11WindowFacts& facts = batch.windows[read.window];
        facts.transientFor = read.transientFor;
        facts.exists = facts.exists && read.exists;
    }
    return batch;
}

Reading<X11WindowFacts> X11WindowControl::windowOf(WindowId window, const Batch& batch) const {
    if (!batch.permitted) {
        return failed<X11WindowFacts>(Result::NotPermitted);
    }
    if (!isWindowNumber(window)) {
        return failed<X11WindowFacts>(Result::Gone);
    }
    const auto found = batch.windows.constFind(static_cast<xcb_window_t>(window));
    if (found == batch.windows.constEnd() || !found->exists) {
        return failed<X11WindowFacts>(Result::Gone);
    }
    return ok(*found);
}

WindowFacts X11WindowControl::factsOf(WindowId window, const Batch& batch) const {
    const Reading<X11WindowFacts> facts = windowOf(window, batch);
    if (facts.result != Result::Ok) {
        return {failed<QRectF>(facts.result), failed<WindowRole>(facts.result), failed<bool>(facts.result)};
    }
    const QRect frame = facts.value->outerFrame().translated(-batch.root.globalOriginInRoot);
    return {ok(QRectF(frame)), ok(m_kinds.role(*facts.value)), ok(m_kinds.isHidden(*facts.value))};
}

QList<WindowFacts> X11WindowControl::facts(const QList<WindowId>& windows) {
    QList<WindowFacts> answers;
    if (windows.isEmpty()) {
        return answers;
    }
    const Batch batch = readFacts(windows);
    for (WindowId window : windows) {
        answers.append(factsOf(window, batch));
    }
    return answers;
}

Reading<QRectF> X11WindowControl::frame(WindowId window) {
    return factsOf(window, readFacts({window})).frame;
}

Reading<WindowRole> X11WindowControl::role(WindowId window) {
    return factsOf(window, readFacts({window})).role;
}

Reading<bool> X11WindowControl::minimised(WindowId window) {
    return factsOf(window, readFacts({window})).minimised;
}

Result X11WindowControl::canChange(WindowId window) {
    if (m_connection.hasError() || !windowManagerRunning()) {
        return Result::NotPermitted;
    }
    return isWindowNumber(window) ? Result::Ok : Result::Gone;
}

Result X11WindowControl::changed(xcb_window_t window, Result result) {
    if (m_cache != nullptr) {
        m_cache->forget(window);
    }
    return result;
}

Result X11WindowControl::move(WindowId window, const QPointF& topLeft) {
    if (!std::isfinite(topLeft.x()) || !std::isfinite(topLeft.y())) {
        return Result::Failure;
    }
    if (const Result result = canChange(window); result != Result::Ok) {
        return result;
    }
    const auto xid = static_cast<xcb_window_t>(window);
    const QPoint origin = m_reader.readRoot(X11WindowReader::GlobalOrigin).globalOriginInRoot;
    return changed(xid, m_placer.moveFrame(xid, topLeft.toPoint() + origin));
}

Result X11WindowControl::resize(WindowId window, const QSizeF& size) {
    if (!std::isfinite(size.width()) || !std::isfinite(size.height()) || size.width() < 1 || size.height() < 1) {
        return Result::Failure;
    }
    if (const Result result = canChange(window); result != Result::Ok) {
        return result;
    }
    const auto xid = static_cast<xcb_window_t>(window);
    return changed(xid, m_placer.resizeFrame(xid, size.toSize()));
}

Result X11WindowControl::unminimise(WindowId window) {
    if (const Result result = canChange(window); result != Result::Ok) {
        return result;
    }
    const auto xid = static_cast<xcb_window_t>(window);
    return changed(xid, m_placer.setMinimized(xid, false));
}

Result X11WindowControl::activate(WindowId window) {
    if (const Result result = canChange(window); result != Result::Ok) {
        return result;
    }
    const auto xid = static_cast<xcb_window_t>(window);
    return changed(xid, m_placer.activate(xid));
}

QList<PlacementResult> X11WindowControl::place(const QList<WindowPlacement>& placements) {
    QList<PlacementResult> results(placements.size());
    QList<X11WindowPlacer::Placement> batch;
    QList<qsizetype> batchIndexes;
    std::optional<QPoint> origin;
    for (qsizetype i = 0; i < placements.size(); ++i) {
        const WindowPlacement& placement = placements[i];
        const bool sizeAsked = placement.size.has_value();
        auto refused = [sizeAsked](Result result) {
            return PlacementResult{result, sizeAsked ? std::optional(result) : std::nullopt};
        };
        if (!std::isfinite(placement.topLeft.x()) || !std::isfinite(placement.topLeft.y())) {
            results[i] = refused(Result::Failure);
            continue;
        }
        if (const Result result = canChange(placement.window); result != Result::Ok) {
            results[i] = refused(result);
            continue;
        }
        // A size no window can take fails on its own; the move still goes ahead, as it would alone.
        const bool sizeUsable = sizeAsked && std::isfinite(placement.size->width()) &&
                                std::isfinite(placement.size->height()) && placement.size->width() >= 1 &&
                                placement.size->height() >= 1;
        if (!origin) {
            origin = m_reader.readRoot(X11WindowReader::GlobalOrigin).globalOriginInRoot;
        }
        batch.append({static_cast<xcb_window_t>(placement.window), placement.topLeft.toPoint() + *origin,
                      sizeUsable ? std::optional(placement.size->toSize()) : std::nullopt});
        batchIndexes.append(i);
    }
    const QList<PlacementResult> placed = m_placer.place(batch);
    for (qsizetype j = 0; j < batch.size(); ++j) {
        const qsizetype i = batchIndexes[j];
        PlacementResult result = placed.value(j);
        if (placements[i].size && !batch[j].frameSize) {
            result.size = Result::Failure;
        }
        if (result.frame) {
            result.frame->translate(-QPointF(*origin));
        }
        results[i] = {changed(batch[j].window, result.position), result.size, result.frame};
    }
    return results;
}

Result X11WindowControl::unhide(pid_t) {
    return Result::Unsupported;  // X11 has no hidden applications
}
