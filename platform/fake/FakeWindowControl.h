// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QMutex>

#include "platform/WindowControl.h"

// Scripted windows of scripted applications: their lists, frames, roles and focus, reads that fail,
// changes that apply, fail or are silently ignored, and a record of every change. Safe to read from a
// background thread.
class FakeWindowControl : public WindowControl {
public:
    // One window of an application, as addWindow() scripts it.
    struct Window {
        WindowId id = 0;
        QRectF frame;
        WindowRole role = WindowRole::Window;
        bool inVisible = true;             // listed by the visible-windows list
        bool inIncludingMinimised = true;  // listed by the list that includes minimised windows
        bool minimised = false;
    };

    enum class Change { Move, Resize, Unminimise, Activate, Unhide };
    // One change asked for: of a window, or of an application (Unhide, by pid).
    struct Request {
        Change change = Change::Move;
        qint64 target = 0;
        QPointF point;  // Move
        QSizeF size;    // Resize
    };

    // Adds a window to the application's lists, with its frame and role.
    void addWindow(pid_t pid, const Window& window);
    // Replaces one of the application's lists, or makes reading it fail.
    void setWindows(pid_t pid, WindowScope scope, const QList<WindowId>& windows);
    void setWindowsError(pid_t pid, WindowScope scope, Result result);

    // A window's frame, role and minimised state; a failing read; nothing at all (NoValue).
    void setFrame(WindowId window, const QRectF& frame);
    void setFrameError(WindowId window, Result result);
    void setRole(WindowId window, WindowRole role);
    void setRoleError(WindowId window, Result result);
    void setMinimised(WindowId window, bool minimised);
    // The window's current frame (as changes left it).
    QRectF currentFrame(WindowId window) const;
    bool isMinimised(WindowId window) const;

    // The focus: the system's focused window and application, an application's focused and main window.
    void setFocusedWindow(Reading<WindowId> reading);
    void setFocusedApplication(Reading<pid_t> reading);
    void setFocusedWindow(pid_t pid, Reading<WindowId> reading);
    void setMainWindow(pid_t pid, Reading<WindowId> reading);

    // Makes a change of a window (or application) fail with the result, always or only the next time.
    void setChangeResult(qint64 target, Change change, Result result);
    void failNextChange(qint64 target, Change change, Result result);
    // Changes report `reported` but do nothing, so a read-back shows the old state (an application that
    // refuses a size, for one).
    void ignoreChanges(qint64 target, Change change, Result reported = Result::Ok);

    QList<Request> requests() const;
    QList<Request> requests(qint64 target, Change change) const;
    void clearRequests();
    // How many single reads and how many batched reads were made.
    int readCount() const;
    int batchCount() const;

    Reading<WindowId> focusedWindow() override;
    Reading<pid_t> focusedApplication() override;
    Reading<WindowId> focusedWindow(pid_t application) override;
    Reading<WindowId> mainWindow(pid_t application) override;
    Reading<QList<WindowId>> windows(pid_t application, WindowScope scope) override;
    QList<ApplicationWindows> windowsOfApplications(const QList<pid_t>& applications) override;
    Reading<QRectF> frame(WindowId window) override;
    Reading<WindowRole> role(WindowId window) override;
    Reading<bool> minimised(WindowId window) override;
    QList<WindowFacts> facts(const QList<WindowId>& windows) override;
    // Both lists of each application and the roles of their windows, as one batch (the fake window list's
    // inventory brings them along).
    QHash<pid_t, ApplicationWindowRoles> applicationWindows(const QList<pid_t>& applications);
    Result move(WindowId window, const QPointF& topLeft) override;
    Result resize(WindowId window, const QSizeF& size) override;
    Result unminimise(WindowId window) override;
    Result activate(WindowId window) override;
    Result unhide(pid_t application) override;

private:
    template <typename T>
    static Reading<T> answer(const QHash<qint64, T>& values, const QHash<qint64, Result>& errors, qint64 key);
    static qint64 listKey(pid_t pid, WindowScope scope) {
        return qint64(pid) * 2 + (scope == WindowScope::Visible ? 0 : 1);
    }
    static qint64 changeKey(qint64 target, Change change) { return target * 8 + static_cast<int>(change); }
    Reading<QList<WindowId>> listLocked(pid_t pid, WindowScope scope) const;
    // Records the change; the result it is scripted to give, or nothing when it applies.
    std::optional<Result> recordLocked(const Request& request);

    mutable QMutex m_mutex;
    QHash<qint64, QList<WindowId>> m_lists;
    QHash<qint64, Result> m_listErrors;
    QHash<qint64, QRectF> m_frames;
    QHash<qint64, Result> m_frameErrors;
    QHash<qint64, WindowRole> m_roles;
    QHash<qint64, Result> m_roleErrors;
    QHash<qint64, bool> m_minimised;
    Reading<WindowId> m_focusedWindow{Result::NoValue, std::nullopt};
    Reading<pid_t> m_focusedApplication{Result::NoValue, std::nullopt};
    QHash<pid_t, Reading<WindowId>> m_applicationFocus;
    QHash<pid_t, Reading<WindowId>> m_mainWindows;
    QHash<qint64, Result> m_changeResults;
    QHash<qint64, Result> m_nextChangeResults;
    QHash<qint64, Result> m_ignoredChanges;
    QList<Request> m_requests;
    int m_readCount = 0;
    int m_batchCount = 0;
};
