// SPDX-License-Identifier: MIT
#include "tests/mover/MoverFixture.h"

#include "app/mover/WindowMoveLog.h"

namespace {
TraceCapture* g_activeCapture = nullptr;
}  // namespace

TraceCapture::TraceCapture() {
    QLoggingCategory::setFilterRules(QStringLiteral("lattica.mover.debug=true"));
    g_activeCapture = this;
    m_previous = qInstallMessageHandler(&TraceCapture::handler);
}

TraceCapture::~TraceCapture() {
    qInstallMessageHandler(m_previous);
    g_activeCapture = nullptr;
    QLoggingCategory::setFilterRules(QString());
}

bool TraceCapture::hasLineStartingWith(const QString& prefix) const {
    for (const QString& line : m_lines) {
        if (line.startsWith(prefix)) {
            return true;
        }
    }
    return false;
}

void TraceCapture::handler(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (g_activeCapture != nullptr && type == QtDebugMsg && qstrcmp(context.category, "lattica.mover") == 0) {
        g_activeCapture->m_lines.append(message);
    }
}

DisplaySnapshot MoverTest::display(MonitorId id, const QString& name, int index, const QRectF& bounds) {
    DisplaySnapshot snapshot;
    snapshot.id = id;
    snapshot.persistentID = QStringLiteral("display-%1").arg(id);
    snapshot.name = name;
    snapshot.index = index;
    snapshot.bounds = bounds;
    return snapshot;
}

void MoverTest::addWindow(pid_t pid, qint64 number, const QRectF& frame, const QString& ownerName) {
    bool known = false;
    for (const RunningApplication& application : platform.runningApplications.applications) {
        known = known || application.pid == pid;
    }
    if (!known) {
        platform.runningApplications.addApplication(pid, ownerName);
    }
    std::optional<QList<WindowEntry>> list = platform.windowList.scriptedList();
    list->append(WindowEntry{.id = number, .pid = pid, .ownerName = ownerName, .frame = frame});
    platform.windowList.setWindowList(list);
    platform.windowControl.addWindow(pid, {.id = number, .frame = frame});
}

QStringList MoverTest::diagnosticLines(const std::function<void()>& call) {
    ::testing::internal::CaptureStdout();
    call();
    const QString output = QString::fromStdString(::testing::internal::GetCapturedStdout());
    QStringList lines;
    for (const QString& line : output.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        if (line.startsWith(QStringLiteral("[WindowMoveDiag] "))) {
            lines.append(line);
        }
    }
    return lines;
}

void PrintTo(Result result, std::ostream* os) {
    *os << WindowMoveLog::errorName(result).toStdString();
}

void PrintTo(WindowMoveOutcome outcome, std::ostream* os) {
    switch (outcome) {
        case WindowMoveOutcome::Moved:
            *os << "Moved";
            return;
        case WindowMoveOutcome::NotMoved:
            *os << "NotMoved";
            return;
        case WindowMoveOutcome::SkippedWithoutFrame:
            *os << "SkippedWithoutFrame";
            return;
        case WindowMoveOutcome::SkippedInvalidSourceBounds:
            *os << "SkippedInvalidSourceBounds";
            return;
        case WindowMoveOutcome::NotOnSourceDisplay:
            *os << "NotOnSourceDisplay";
            return;
        case WindowMoveOutcome::AlreadyOnTargetDisplay:
            *os << "AlreadyOnTargetDisplay";
            return;
        case WindowMoveOutcome::NoSourceDisplay:
            *os << "NoSourceDisplay";
            return;
    }
    *os << static_cast<int>(outcome);
}

void PrintTo(ApplicationSkipReason reason, std::ostream* os) {
    switch (reason) {
        case ApplicationSkipReason::NotRegular:
            *os << "NotRegular";
            return;
        case ApplicationSkipReason::Terminated:
            *os << "Terminated";
            return;
        case ApplicationSkipReason::InvalidPid:
            *os << "InvalidPid";
            return;
        case ApplicationSkipReason::NotTargeted:
            *os << "NotTargeted";
            return;
        case ApplicationSkipReason::NoWindows:
            *os << "NoWindows";
            return;
    }
    *os << static_cast<int>(reason);
}

void PrintTo(FrameSource source, std::ostream* os) {
    *os << (source == FrameSource::WindowControl ? "WindowControl" : "WindowList");
}

void PrintTo(const WindowMoveWrites& writes, std::ostream* os) {
    const auto print = [os](const char* name, const std::optional<Result>& result) {
        *os << name << '=';
        if (result) {
            PrintTo(*result, os);
        } else {
            *os << "none";
        }
    };
    *os << '{';
    print("position", writes.position);
    *os << ", ";
    print("size", writes.size);
    *os << ", ";
    print("finalPosition", writes.finalPosition);
    *os << '}';
}
