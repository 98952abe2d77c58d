// SPDX-License-Identifier: MIT
#include "platform/fake/FakeWindowControl.h"

#include <QMutexLocker>

void FakeWindowControl::addWindow(pid_t pid, const Window& window) {
    QMutexLocker locker(&m_mutex);
    for (const auto& [listed, scope] : {std::pair{window.inVisible, WindowScope::Visible},
                                        std::pair{window.inIncludingMinimised, WindowScope::IncludingMinimised}}) {
        if (listed) {
            m_lists[listKey(pid, scope)].append(window.id);
        }
    }
    m_frames.insert(window.id, window.frame);
    m_roles.insert(window.id, window.role);
    m_minimised.insert(window.id, window.minimised);
}

void FakeWindowControl::setWindows(pid_t pid, WindowScope scope, const QList<WindowId>& windows) {
    QMutexLocker locker(&m_mutex);
    m_lists.insert(listKey(pid, scope), windows);
    m_listErrors.remove(listKey(pid, scope));
}

void FakeWindowControl::setWindowsError(pid_t pid, WindowScope scope, Result result) {
    QMutexLocker locker(&m_mutex);
    m_listErrors.insert(listKey(pid, scope), result);
}

void FakeWindowControl::setFrame(WindowId window, const QRectF& frame) {
    QMutexLocker locker(&m_mutex);
    m_frames.insert(window, frame);
    m_frameErrors.remove(window);
}

void FakeWindowControl::setFrameError(WindowId window, Result result) {
    QMutexLocker locker(&m_mutex);
    m_frameErrors.insert(window, result);
}

void FakeWindowControl::setRole(WindowId window, WindowRole role) {
    QMutexLocker locker(&m_mutex);
    m_roles.insert(window, role);
    m_roleErrors.remove(window);
}

void FakeWindowControl::setRoleError(WindowId window, Result result) {
    QMutexLocker locker(&m_mutex);
    m_roleErrors.insert(window, result);
}

void FakeWindowControl::setMinimised(WindowId window, bool minimised) {
    QMutexLocker locker(&m_mutex);
    m_minimised.insert(window, minimised);
}

QRectF FakeWindowControl::currentFrame(WindowId window) const {
    QMutexLocker locker(&m_mutex);
    return m_frames.value(window);
}

bool FakeWindowControl::isMinimised(WindowId window) const {
    QMutexLocker locker(&m_mutex);
    return m_minimised.value(window);
}

void FakeWindowControl::setFocusedWindow(Reading<WindowId> reading) {
    QMutexLocker locker(&m_mutex);
    m_focusedWindow = reading;
}

void FakeWindowControl::setFocusedApplication(Reading<pid_t> reading) {
    QMutexLocker locker(&m_mutex);
    m_focusedApplication = reading;
}

void FakeWindowControl::setFocusedWindow(pid_t pid, Reading<WindowId> reading) {
    QMutexLocker locker(&m_mutex);
    m_applicationFocus.insert(pid, reading);
}

void FakeWindowControl::setMainWindow(pid_t pid, Reading<WindowId> reading) {
    QMutexLocker locker(&m_mutex);
    m_mainWindows.insert(pid, reading);
}

void FakeWindowControl::setChangeResult(qint64 target, Change change, Result result) {
    QMutexLocker locker(&m_mutex);
    m_changeResults.insert(changeKey(target, change), result);
}

void FakeWindowControl::failNextChange(qint64 target, Change change, Result result) {
    QMutexLocker locker(&m_mutex);
    m_nextChangeResults.insert(changeKey(target, change), result);
}

void FakeWindowControl::ignoreChanges(qint64 target, Change change, Result reported) {
    QMutexLocker locker(&m_mutex);
    m_ignoredChanges.insert(changeKey(target, change), reported);
}

QList<FakeWindowControl::Request> FakeWindowControl::requests() const {
    QMutexLocker locker(&m_mutex);
    return m_requests;
}

QList<FakeWindowControl::Request> FakeWindowControl::requests(qint64 target, Change change) const {
    QMutexLocker locker(&m_mutex);
    QList<Request> matching;
    for (const Request& request : m_requests) {
        if (request.target == target && request.change == change) {
            matching.append(request);
        }
    }
    return matching;
}

void FakeWindowControl::clearRequests() {
    QMutexLocker locker(&m_mutex);
    m_requests.clear();
}

int FakeWindowControl::readCount() const {
    QMutexLocker locker(&m_mutex);
    return m_readCount;
}

int FakeWindowControl::batchCount() const {
    QMutexLocker locker(&m_mutex);
    return m_batchCount;
}

template <typename T>
Reading<T> FakeWindowControl::answer(const QHash<qint64, T>& values, const QHash<qint64, Result>& errors, qint64 key) {
    if (errors.contains(key)) {
        return {errors.value(key), std::nullopt};
    }
    if (!values.contains(key)) {
        return {Result::NoValue, std::nullopt};
    }
    return {Result::Ok, values.value(key)};
}

Reading<QList<WindowId>> FakeWindowControl::listLocked(pid_t pid, WindowScope scope) const {
    return answer(m_lists, m_listErrors, listKey(pid, scope));
}

Reading<WindowId> FakeWindowControl::focusedWindow() {
    QMutexLocker locker(&m_mutex);
    ++m_readCount;
    return m_focusedWindow;
}

Reading<pid_t> FakeWindowControl::focusedApplication() {
    QMutexLocker locker(&m_mutex);
    ++m_readCount;
    return m_focusedApplication;
}

Reading<WindowId> FakeWindowControl::focusedWindow(pid_t application) {
    QMutexLocker locker(&m_mutex);
    ++m_readCount;
    return m_applicationFocus.value(application, {Result::NoValue, std::nullopt});
}

Reading<WindowId> FakeWindowControl::mainWindow(pid_t application) {
    QMutexLocker locker(&m_mutex);
    ++m_readCount;
    return m_mainWindows.value(application, {Result::NoValue, std::nullopt});
}

Reading<QList<WindowId>> FakeWindowControl::windows(pid_t application, WindowScope scope) {
    QMutexLocker locker(&m_mutex);
    ++m_readCount;
    return listLocked(application, scope);
}

QList<ApplicationWindows> FakeWindowControl::windowsOfApplications(const QList<pid_t>& applications) {
    QMutexLocker locker(&m_mutex);
    ++m_batchCount;
    QList<ApplicationWindows> answers;
    for (pid_t pid : applications) {
        answers.append({listLocked(pid, WindowScope::Visible), listLocked(pid, WindowScope::IncludingMinimised)});
    }
    return answers;
}

Reading<QRectF> FakeWindowControl::frame(WindowId window) {
    QMutexLocker locker(&m_mutex);
    ++m_readCount;
    return answer(m_frames, m_frameErrors, window);
}

Reading<WindowRole> FakeWindowControl::role(WindowId window) {
    QMutexLocker locker(&m_mutex);
    ++m_readCount;
    return answer(m_roles, m_roleErrors, window);
}

Reading<bool> FakeWindowControl::minimised(WindowId window) {
    QMutexLocker locker(&m_mutex);
    ++m_readCount;
    return answer(m_minimised, {}, window);
}

QList<WindowFacts> FakeWindowControl::facts(const QList<WindowId>& windows) {
    QMutexLocker locker(&m_mutex);
    ++m_batchCount;
    QList<WindowFacts> answers;
    for (WindowId window : windows) {
        answers.append({answer(m_frames, m_frameErrors, window), answer(m_roles, m_roleErrors, window),
                        answer(m_minimised, {}, window)});
    }
    return answers;
}

QHash<pid_t, ApplicationWindowRoles> FakeWindowControl::applicationWindows(const QList<pid_t>& applications) {
    QMutexLocker locker(&m_mutex);
    ++m_batchCount;
    QHash<pid_t, ApplicationWindowRoles> answers;
    for (pid_t pid : applications) {
        ApplicationWindowRoles& owned = answers[pid];
        owned.lists = {listLocked(pid, WindowScope::Visible), listLocked(pid, WindowScope::IncludingMinimised)};
        for (const Reading<QList<WindowId>>& list : {owned.lists.visible, owned.lists.includingMinimised}) {
            for (WindowId window : list.value.value_or(QList<WindowId>{})) {
                owned.roles.insert(window, answer(m_roles, m_roleErrors, window));
            }
        }
    }
    return answers;
}

std::optional<Result> FakeWindowControl::recordLocked(const Request& request) {
    m_requests.append(request);
    const qint64 key = changeKey(request.target, request.change);
    if (m_nextChangeResults.contains(key)) {
        return m_nextChangeResults.take(key);
    }
    if (m_changeResults.contains(key)) {
        return m_changeResults.value(key);
    }
    if (m_ignoredChanges.contains(key)) {
        return m_ignoredChanges.value(key);
    }
    return std::nullopt;
}

Result FakeWindowControl::move(WindowId window, const QPointF& topLeft) {
    QMutexLocker locker(&m_mutex);
    if (const std::optional<Result> scripted = recordLocked({Change::Move, window, topLeft, {}})) {
        return *scripted;
    }
    m_frames[window].moveTopLeft(topLeft);
    return Result::Ok;
}

Result FakeWindowControl::resize(WindowId window, const QSizeF& size) {
    QMutexLocker locker(&m_mutex);
    if (const std::optional<Result> scripted = recordLocked({Change::Resize, window, {}, size})) {
        return *scripted;
    }
    m_frames[window].setSize(size);
    return Result::Ok;
}

Result FakeWindowControl::unminimise(WindowId window) {
    QMutexLocker locker(&m_mutex);
    if (const std::optional<Result> scripted = recordLocked({Change::Unminimise, window, {}, {}})) {
        return *scripted;
    }
    m_minimised.insert(window, false);
    return Result::Ok;
}

Result FakeWindowControl::activate(WindowId window) {
    QMutexLocker locker(&m_mutex);
    if (const std::optional<Result> scripted = recordLocked({Change::Activate, window, {}, {}})) {
        return *scripted;
    }
    m_minimised.insert(window, false);
    m_focusedWindow = {Result::Ok, window};
    return Result::Ok;
}

Result FakeWindowControl::unhide(pid_t application) {
    QMutexLocker locker(&m_mutex);
    return recordLocked({Change::Unhide, application, {}, {}}).value_or(Result::Ok);
}
