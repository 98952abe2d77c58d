// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <QLoggingCategory>
#include <QStringList>
#include <ostream>

#include "app/model/Models.h"
#include "app/mover/WindowMover.h"
#include "platform/fake/FakePlatform.h"

// Readable QStrings and report values in test failure messages.
inline void PrintTo(const QString& text, std::ostream* os) {
    *os << '"' << text.toStdString() << '"';
}
void PrintTo(Result result, std::ostream* os);
void PrintTo(WindowMoveOutcome outcome, std::ostream* os);
void PrintTo(ApplicationSkipReason reason, std::ostream* os);
void PrintTo(FrameSource source, std::ostream* os);
void PrintTo(const WindowMoveWrites& writes, std::ostream* os);

// Collects the lines of the mover's debug trace while a test runs.
class TraceCapture {
public:
    TraceCapture();
    ~TraceCapture();
    TraceCapture(const TraceCapture&) = delete;
    TraceCapture& operator=(const TraceCapture&) = delete;

    const QStringList& lines() const { return m_lines; }
    bool contains(const QString& line) const { return m_lines.contains(line); }
    // True when some line starts with the prefix.
    bool hasLineStartingWith(const QString& prefix) const;

private:
    static void handler(QtMsgType type, const QMessageLogContext& context, const QString& message);

    QStringList m_lines;
    QtMessageHandler m_previous = nullptr;
};

// A fake desktop with two displays side by side and helpers to script applications and windows.
class MoverTest : public ::testing::Test {
protected:
    static DisplaySnapshot display(MonitorId id, const QString& name, int index, const QRectF& bounds);

    // A regular application with one window that both the window list and the window control report.
    void addWindow(pid_t pid, qint64 number, const QRectF& frame, const QString& ownerName = QStringLiteral("Editor"));
    // Diagnostic lines written to standard output by the call.
    static QStringList diagnosticLines(const std::function<void()>& call);

    FakePlatform platform;
    TraceCapture trace;
    const DisplaySnapshot left = display(1, QStringLiteral("Left"), 1, QRectF(0, 0, 1920, 1080));
    const DisplaySnapshot right = display(2, QStringLiteral("Right"), 2, QRectF(1920, 0, 2560, 1440));
};
