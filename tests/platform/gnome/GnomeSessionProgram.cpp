// SPDX-License-Identifier: MIT
#include "tests/platform/gnome/GnomeSessionProgram.h"

#include "tests/support/VirtualDesktop.h"

GnomeSessionProgram::GnomeSessionProgram(QString config) : m_config(std::move(config)) {}

GnomeSessionProgram::~GnomeSessionProgram() {
    if (m_process.state() != QProcess::NotRunning) {
        m_process.terminate();
        if (!m_process.waitForFinished(10000)) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }
}

QProcessEnvironment GnomeSessionProgram::environment() const {
    QProcessEnvironment environment = VirtualDesktop::programEnvironment(m_config);
    // The program chooses its toolkit backend itself: Wayland on GNOME Shell.
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("lattica.panel.paint.debug=true"));
    return environment;
}

GnomeSessionProgram::Finished GnomeSessionProgram::run(const QStringList& arguments) const {
    return runToEnd(QStringLiteral(LATTICA_BINARY), arguments, environment());
}

QStringList GnomeSessionProgram::windowLine(const QString& title) const {
    for (const QString& line : run({QStringLiteral("windows")}).output.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const QStringList fields = line.split(QStringLiteral("  "));
        if (fields.size() >= 6 && fields.at(5) == title) {
            return fields;
        }
    }
    return {};
}

bool GnomeSessionProgram::start() {
    m_process.setProcessEnvironment(environment());
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.start(QStringLiteral(LATTICA_BINARY), {});
    return m_process.waitForStarted();
}

bool GnomeSessionProgram::waitForOutput(const QString& text, int timeoutMs) {
    return VirtualDesktop::waitUntil(
               [&] {
                   m_process.waitForReadyRead(50);
                   m_output += QString::fromUtf8(m_process.readAll());
                   return m_output.contains(text) || m_process.state() == QProcess::NotRunning;
               },
               timeoutMs) &&
           m_output.contains(text);
}

bool GnomeSessionProgram::waitForCount(const QString& text, int count, int timeoutMs) {
    return VirtualDesktop::waitUntil(
               [&] {
                   m_process.waitForReadyRead(50);
                   m_output += QString::fromUtf8(m_process.readAll());
                   return m_output.count(text) >= count || m_process.state() == QProcess::NotRunning;
               },
               timeoutMs) &&
           m_output.count(text) >= count;
}

int GnomeSessionProgram::countOf(const QString& text) {
    // Takes in what is waiting on the pipe without waiting for more.
    while (m_process.waitForReadyRead(0)) {
    }
    m_output += QString::fromUtf8(m_process.readAll());
    return int(m_output.count(text));
}
