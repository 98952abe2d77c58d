// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

// A virtual desktop of the test's own (scripts/virtual-desktop.sh start), beside the one the test runs on,
// so that the test may kill its X server. It is stopped when the object ends.
class PrivateDesktop {
public:
    PrivateDesktop() = default;
    ~PrivateDesktop();
    PrivateDesktop(const PrivateDesktop&) = delete;
    PrivateDesktop& operator=(const PrivateDesktop&) = delete;

    bool start(const QString& windowManager = QStringLiteral("openbox"));
    const QString& display() const { return m_display; }
    qint64 serverPid() const { return m_serverPid; }

private:
    QString m_display;
    QString m_state;
    qint64 m_serverPid = 0;
};
