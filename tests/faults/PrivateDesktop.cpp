// SPDX-License-Identifier: MIT
#include "tests/faults/PrivateDesktop.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>

#include "tests/support/VirtualDesktop.h"

namespace {

QString script() {
    return VirtualDesktop::sourcePath(QStringLiteral("scripts/virtual-desktop.sh"));
}

}  // namespace

PrivateDesktop::~PrivateDesktop() {
    if (!m_state.isEmpty()) {
        QProcess::execute(QStringLiteral("bash"), {script(), QStringLiteral("stop"), m_state});
    }
}

bool PrivateDesktop::start(const QString& windowManager) {
    QProcess starter;
    starter.start(QStringLiteral("bash"), {script(), QStringLiteral("start"), QStringLiteral("--wm"), windowManager});
    if (!starter.waitForFinished(60000) || starter.exitCode() != 0) {
        return false;
    }
    const QString printed = QString::fromUtf8(starter.readAllStandardOutput());
    m_display = QRegularExpression(QStringLiteral("^DISPLAY=(\\S+)$"), QRegularExpression::MultilineOption)
                    .match(printed)
                    .captured(1);
    m_state = QRegularExpression(QStringLiteral("^STATE=(\\S+)$"), QRegularExpression::MultilineOption)
                  .match(printed)
                  .captured(1);
    QFile state(m_state);
    if (state.open(QIODevice::ReadOnly)) {
        const QString contents = QString::fromUtf8(state.readAll());
        m_serverPid = QRegularExpression(QStringLiteral("^XVFB_PID=(\\d+)$"), QRegularExpression::MultilineOption)
                          .match(contents)
                          .captured(1)
                          .toLongLong();
    }
    return !m_display.isEmpty() && m_serverPid > 0;
}
