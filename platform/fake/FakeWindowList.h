// SPDX-License-Identifier: MIT
#pragma once

#include <QMutex>
#include <QSet>
#include <functional>

#include "platform/WindowList.h"
#include "platform/fake/FakeWindowControl.h"

// A scripted window list for tests. Safe to query from a background thread.
class FakeWindowList : public WindowList {
public:
    // Replaces the list (front to back); nothing models an unavailable list.
    void setWindowList(const std::optional<QList<WindowEntry>>& list) {
        QMutexLocker locker(&m_mutex);
        m_windowList = list;
    }
    void setWindows(const QList<WindowEntry>& windows) { setWindowList(windows); }
    // Runs inside every query, on the querying thread, after the list has been taken (tests use it to
    // hold a background query until they let it go).
    void setQueryHook(std::function<void(int queryNumber)> hook) {
        QMutexLocker locker(&m_mutex);
        m_hook = std::move(hook);
    }
    // What the last query asked for desktop windows.
    std::optional<DesktopWindows> lastDesktopWindows() const {
        QMutexLocker locker(&m_mutex);
        return m_lastDesktopWindows;
    }
    int queryCount() const {
        QMutexLocker locker(&m_mutex);
        return m_queryCount;
    }
    // The scripted list, without counting as a query.
    std::optional<QList<WindowEntry>> scriptedList() const {
        QMutexLocker locker(&m_mutex);
        return m_windowList;
    }

    // The window control whose scripted lists and roles the inventory brings along; without one it brings
    // none, and callers ask the window control.
    void answerApplicationsFrom(FakeWindowControl* control) {
        QMutexLocker locker(&m_mutex);
        m_control = control;
    }

    std::optional<WindowInventory> inventory(DesktopWindows desktopWindows) override {
        std::optional<QList<WindowEntry>> list = windows(desktopWindows);
        if (!list) {
            return std::nullopt;
        }
        FakeWindowControl* control = nullptr;
        {
            QMutexLocker locker(&m_mutex);
            control = m_control;
        }
        WindowInventory inventory{std::move(*list), {}};
        if (control != nullptr) {
            QSet<pid_t> owners;
            for (const WindowEntry& entry : inventory.windows) {
                if (entry.pid) {
                    owners.insert(*entry.pid);
                }
            }
            inventory.applications = control->applicationWindows(QList<pid_t>(owners.cbegin(), owners.cend()));
        }
        return inventory;
    }

    std::optional<QList<WindowEntry>> windows(DesktopWindows desktopWindows) override {
        std::function<void(int)> hook;
        std::optional<QList<WindowEntry>> list;
        int queryNumber = 0;
        {
            QMutexLocker locker(&m_mutex);
            m_lastDesktopWindows = desktopWindows;
            queryNumber = ++m_queryCount;
            list = m_windowList;
            hook = m_hook;
        }
        if (hook) {
            hook(queryNumber);
        }
        return list;
    }

private:
    mutable QMutex m_mutex;
    std::optional<QList<WindowEntry>> m_windowList = QList<WindowEntry>{};
    std::function<void(int)> m_hook;
    FakeWindowControl* m_control = nullptr;
    std::optional<DesktopWindows> m_lastDesktopWindows;
    int m_queryCount = 0;
};
