// SPDX-License-Identifier: MIT
#include "platform/xdg/XdgAutostart.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSettings>
#include <QStandardPaths>
#include <optional>

#include "platform/xdg/XdgBaseDirectories.h"

namespace {

// A desktop entry's quoted argument: inside double quotes, " ` $ and \ take a backslash; the entry's
// own string escaping then doubles every backslash, and % is written %%.
QString quotedArgument(const QString& argument) {
    QString quoted;
    for (const QChar character : argument) {
        if (character == u'\\') {
            quoted += QLatin1String("\\\\\\\\");
        } else if (character == u'"' || character == u'`' || character == u'$') {
            quoted += QLatin1String("\\\\") + character;
        } else if (character == u'%') {
            quoted += QLatin1String("%%");
        } else {
            quoted += character;
        }
    }
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

// The value of the first "Key=value" line of an entry with the given key, or nothing.
std::optional<QString> entryValue(const QString& entryPath, const QString& key) {
    QFile file(entryPath);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        if (equals > 0 && line.left(equals).trimmed() == key) {
            return line.mid(equals + 1).trimmed();
        }
    }
    return std::nullopt;
}

// Whether the entry at the path exists and would start the program at login.
bool entryStarts(const QString& entryPath) {
    QFile file(entryPath);
    if (entryPath.isEmpty() || !file.open(QIODevice::ReadOnly)) {
        return false;
    }
    // Desktop entries are simple "Key=value" lines; a hidden or disabled entry does not start.
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        if (equals < 0) {
            continue;
        }
        const QString key = line.left(equals).trimmed();
        const QString value = line.mid(equals + 1).trimmed().toLower();
        if ((key == QLatin1String("Hidden") && value == QLatin1String("true")) ||
            (key == QLatin1String("X-GNOME-Autostart-enabled") && value == QLatin1String("false"))) {
            return false;
        }
    }
    return true;
}

bool removeEntry(const QString& entryPath, QString* error) {
    QFile file(entryPath);
    if (entryPath.isEmpty() || !file.exists()) {
        return true;
    }
    if (!file.remove()) {
        *error = file.errorString();
        return false;
    }
    return true;
}

QString autostartFolder() {
    const QString base = XdgBaseDirectories::configHome();
    return base.isEmpty() ? QString() : base + QStringLiteral("/autostart/");
}

}  // namespace

XdgAutostart::XdgAutostart(QString entryPath, QString legacyEntryPath)
    : m_entryPath(std::move(entryPath)), m_legacyEntryPath(std::move(legacyEntryPath)) {}

QString XdgAutostart::currentEntryPath() const {
    if (m_legacyEntryPath.isEmpty() || QFile::exists(m_entryPath) || !QFile::exists(m_legacyEntryPath)) {
        return m_entryPath;
    }
    return m_legacyEntryPath;
}

namespace {

// The binary that starts the program: the `lattica` launcher, which names itself in LATTICA_LAUNCHER
// when it hands over, else the program's own.
QString startingBinary() {
    const QString launcher = qEnvironmentVariable("LATTICA_LAUNCHER");
    return launcher.isEmpty() ? QCoreApplication::applicationFilePath() : launcher;
}

}  // namespace

QString XdgAutostart::execCommand(const QString& runningBinary, const QString& searchPath) {
    const QString name = QStringLiteral("lattica");
    const QStringList folders = searchPath.split(QLatin1Char(':'), Qt::SkipEmptyParts);
    const QString found = folders.isEmpty() ? QString() : QStandardPaths::findExecutable(name, folders);
    const QString running = QFileInfo(runningBinary).canonicalFilePath();
    if (!found.isEmpty() && !running.isEmpty() && QFileInfo(found).canonicalFilePath() == running) {
        return name;
    }
    return quotedArgument(QFileInfo(runningBinary).absoluteFilePath());
}

QString XdgAutostart::execProgram(const QString& execValue) {
    // The string escapes first (\\ \s \t \n \r), then the quoting of the first argument.
    QString value;
    for (qsizetype i = 0; i < execValue.size(); ++i) {
        if (execValue[i] == u'\\' && i + 1 < execValue.size()) {
            const QChar next = execValue[++i];
            value += next == u's'   ? QChar(u' ')
                     : next == u't' ? QChar(u'\t')
                     : next == u'n' ? QChar(u'\n')
                     : next == u'r' ? QChar(u'\r')
                                    : next;
        } else {
            value += execValue[i];
        }
    }
    QString program;
    if (value.startsWith(QLatin1Char('"'))) {
        for (qsizetype i = 1; i < value.size() && value[i] != u'"'; ++i) {
            program += value[i] == u'\\' && i + 1 < value.size() ? value[++i] : value[i];
        }
    } else {
        program = value.section(QLatin1Char(' '), 0, 0, QString::SectionSkipEmpty);
    }
    return program.replace(QLatin1String("%%"), QLatin1String("%"));
}

QString XdgAutostart::program() {
    const std::optional<QString> exec = entryValue(currentEntryPath(), QStringLiteral("Exec"));
    if (exec && !exec->isEmpty()) {
        return execProgram(*exec);
    }
    return execProgram(execCommand(startingBinary(), qEnvironmentVariable("PATH")));
}

QString XdgAutostart::standardPath() {
    const QString folder = autostartFolder();
    return folder.isEmpty() ? QString() : folder + QStringLiteral("app.lattica.Lattica.desktop");
}

QString XdgAutostart::legacyStandardPath() {
    const QString folder = autostartFolder();
    return folder.isEmpty() ? QString() : folder + QStringLiteral("lattica.desktop");
}

AutostartStatus XdgAutostart::status() {
    return entryStarts(m_entryPath) || entryStarts(m_legacyEntryPath) ? AutostartStatus::Enabled
                                                                      : AutostartStatus::Disabled;
}

bool XdgAutostart::enable(QString* error) {
    if (m_entryPath.isEmpty()) {
        *error = QStringLiteral("There is no configuration folder: neither HOME nor XDG_CONFIG_HOME names one.");
        return false;
    }
    const QString directory = QFileInfo(m_entryPath).absolutePath();
    if (!QDir().mkpath(directory)) {
        *error = QStringLiteral("Cannot create the folder %1.").arg(directory);
        return false;
    }
    const QString command = execCommand(startingBinary(), qEnvironmentVariable("PATH"));
    const QByteArray entry = QStringLiteral(
                                 "[Desktop Entry]\n"
                                 "Type=Application\n"
                                 "Name=Lattica\n"
                                 "Comment=Preview displays and move windows from one display to another\n"
                                 "Exec=%1\n"
                                 "Icon=app.lattica.Lattica\n"
                                 "Terminal=false\n"
                                 "X-GNOME-Autostart-enabled=true\n")
                                 .arg(command)
                                 .toUtf8();
    QSaveFile file(m_entryPath);
    if (!file.open(QIODevice::WriteOnly) || file.write(entry) != entry.size() || !file.commit()) {
        *error = file.errorString();
        return false;
    }
    // The entry of an earlier version would start a second copy at login.
    return removeEntry(m_legacyEntryPath, error);
}

bool XdgAutostart::disable(QString* error) {
    return removeEntry(m_entryPath, error) && removeEntry(m_legacyEntryPath, error);
}
