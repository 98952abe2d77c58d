// SPDX-License-Identifier: MIT
#include "platform/x11/X11WindowDesktopEntries.h"

#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>

namespace {

// Directory times are looked at no more often than this.
constexpr qint64 kRecheckMilliseconds = 2000;

qint64 monotonicMilliseconds() {
    static QElapsedTimer clock = [] {
        QElapsedTimer timer;
        timer.start();
        return timer;
    }();
    return clock.elapsed();
}

}  // namespace

X11WindowDesktopEntries::ParsedFile X11WindowDesktopEntries::parseFile(const QByteArray& contents,
                                                                       const QString& locale) {
    ParsedFile entry;
    // Read as a text file is: carriage returns dropped, then line by line. Split by hand: reading lines
    // through a text-mode QIODevice costs several times more on large files.
    QByteArray text = contents;
    text.removeIf([](char c) { return c == '\r'; });
    const QString language = locale.section(QLatin1Char('_'), 0, 0);
    // Formatted once: a large file has many lines, and most of them are not names.
    const QString localizedKey = QStringLiteral("Name[%1]").arg(locale);
    const QString languageKey = QStringLiteral("Name[%1]").arg(language);
    QString localizedName;
    QString languageName;
    bool inMainGroup = false;
    for (qsizetype start = 0; start < text.size();) {
        qsizetype end = text.indexOf('\n', start);
        if (end < 0) {
            end = text.size();
        }
        const QString line = QString::fromUtf8(text.constData() + start, end - start).trimmed();
        start = end + 1;
        if (line.startsWith(QLatin1Char('['))) {
            inMainGroup = line == QLatin1String("[Desktop Entry]");
            continue;
        }
        if (!inMainGroup || line.startsWith(QLatin1Char('#'))) {
            continue;
        }
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        if (equals <= 0) {
            continue;
        }
        const QString key = line.left(equals).trimmed();
        const QString value = line.mid(equals + 1).trimmed();
        if (key == QLatin1String("Name")) {
            entry.name = value;
        } else if (key == localizedKey) {
            localizedName = value;
        } else if (key == languageKey) {
            languageName = value;
        } else if (key == QLatin1String("Icon")) {
            entry.icon = value;
        } else if (key == QLatin1String("StartupWMClass")) {
            entry.wmClass = value;
        } else if (key == QLatin1String("Type")) {
            entry.application = value == QLatin1String("Application");
        }
    }
    if (!localizedName.isEmpty()) {
        entry.name = localizedName;
    } else if (!languageName.isEmpty()) {
        entry.name = languageName;
    }
    return entry;
}

namespace {

X11WindowDesktopEntries::ParsedFile parseFileAt(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return X11WindowDesktopEntries::parseFile(file.readAll(), QLocale::system().name());
}

}  // namespace

X11WindowDesktopEntries::X11WindowDesktopEntries(QStringList dataDirectories)
    : m_directories(dataDirectories.isEmpty() ? QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation)
                                              : std::move(dataDirectories)) {}

std::optional<X11WindowDesktopEntries::Entry> X11WindowDesktopEntries::find(const QByteArray& classInstance,
                                                                            const QByteArray& className) {
    QMutexLocker lock(&m_mutex);
    refreshIfChanged();
    const QString wmClass = QString::fromUtf8(className).toLower();
    const QString instance = QString::fromUtf8(classInstance).toLower();
    for (const QString& key : {wmClass, instance}) {
        if (!key.isEmpty() && m_byWmClass.contains(key)) {
            return m_byWmClass.value(key);
        }
    }
    for (const QString& key : {wmClass, instance}) {
        if (!key.isEmpty() && m_byFileName.contains(key)) {
            return m_byFileName.value(key);
        }
    }
    return std::nullopt;
}

void X11WindowDesktopEntries::refreshIfChanged() {
    const qint64 now = monotonicMilliseconds();
    if (m_lastCheck >= 0 && now - m_lastCheck < kRecheckMilliseconds) {
        return;
    }
    m_lastCheck = now;
    QHash<QString, QDateTime> modified;
    for (const QString& directory : m_directories) {
        modified.insert(directory, QFileInfo(directory).lastModified());
    }
    if (modified != m_modified || m_byFileName.isEmpty()) {
        m_modified = modified;
        load();
    }
}

void X11WindowDesktopEntries::load() {
    m_byWmClass.clear();
    m_byFileName.clear();
    // Earlier directories win, so insert only what is not known yet.
    for (const QString& directory : m_directories) {
        QDirIterator it(directory, {QStringLiteral("*.desktop")}, QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            const ParsedFile parsed = parseFileAt(path);
            if (!parsed.application || parsed.name.isEmpty()) {
                continue;
            }
            const QString id = QDir(directory).relativeFilePath(path).replace(QLatin1Char('/'), QLatin1Char('-'));
            const Entry entry{parsed.name, parsed.icon, id.chopped(QStringLiteral(".desktop").size())};
            const QString fileName = it.fileInfo().completeBaseName().toLower();
            if (!m_byFileName.contains(fileName)) {
                m_byFileName.insert(fileName, entry);
            }
            // Reverse-domain ids (org.gnome.Foo) also match by their last part.
            const QString lastPart = fileName.section(QLatin1Char('.'), -1);
            if (lastPart != fileName && !m_byFileName.contains(lastPart)) {
                m_byFileName.insert(lastPart, entry);
            }
            if (!parsed.wmClass.isEmpty() && !m_byWmClass.contains(parsed.wmClass.toLower())) {
                m_byWmClass.insert(parsed.wmClass.toLower(), entry);
            }
        }
    }
}
