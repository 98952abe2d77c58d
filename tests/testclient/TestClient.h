// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QHash>
#include <QProcess>
#include <QString>
#include <QStringList>

// Drives one lattica-test-client process: opens and closes its windows and learns their XIDs.
class TestClient {
public:
    TestClient();
    ~TestClient();
    TestClient(const TestClient&) = delete;
    TestClient& operator=(const TestClient&) = delete;

    // Starts the client and waits until it is connected to the X server.
    bool start(int timeoutMs = 5000);
    // Opens a window (options as the client reads them, e.g. "type=dialog x=10 y=20 w=300 h=200") and
    // waits until it is shown. Returns its XID, or 0 when it did not appear in time.
    quint32 open(const QString& name, const QString& options = {}, int timeoutMs = 5000);
    // Opens count windows name0..name<count-1> with one command; their XIDs in order, or fewer on failure.
    QList<quint32> openMany(const QString& name, int count, const QString& options = {}, int timeoutMs = 20000);
    // Destroys a window and waits until the client has seen it go.
    bool close(const QString& name, int timeoutMs = 5000);
    // Ends the client the polite way, or kills it at once (it then vanishes without cleaning up).
    bool exit(int timeoutMs = 5000);
    void kill();

    qint64 pid() const { return m_process.processId(); }
    quint32 window(const QString& name) const { return m_windows.value(name); }
    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    static QString programPath();

private:
    void send(const QString& line);
    // Reads output until a line starting with prefix arrives; returns it, or an empty string.
    QString waitForLine(const QString& prefix, int timeoutMs);
    void readLines();

    QProcess m_process;
    QByteArray m_buffer;
    QStringList m_lines;
    QHash<QString, quint32> m_windows;
};
