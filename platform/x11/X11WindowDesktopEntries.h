// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QMutex>
#include <QString>
#include <QStringList>
#include <optional>

// The desktop entries (applications/*.desktop in the XDG data directories) that name and draw an
// application, matched against a window's WM_CLASS. Read once and re-read when a directory changes.
// Thread-safe.
class X11WindowDesktopEntries {
public:
    struct Entry {
        QString name;
        QString icon;  // a theme icon name or an absolute path
        QString id;    // the desktop file id: its path below the directory, '/' as '-', without ".desktop"
    };

    // What one desktop file says in its [Desktop Entry] group; the name is the one for the locale
    // ("de_DE") when the file has it.
    struct ParsedFile {
        QString name;
        QString icon;
        QString wmClass;
        bool application = true;
    };
    static ParsedFile parseFile(const QByteArray& contents, const QString& locale);

    // The data directories to search, most important first; empty means the XDG defaults.
    explicit X11WindowDesktopEntries(QStringList dataDirectories = {});

    // The entry whose StartupWMClass equals the class (or instance), else the one whose file name does.
    std::optional<Entry> find(const QByteArray& classInstance, const QByteArray& className);

private:
    void refreshIfChanged();
    void load();

    QMutex m_mutex;
    QStringList m_directories;
    QHash<QString, QDateTime> m_modified;
    QHash<QString, Entry> m_byWmClass;   // StartupWMClass, lower case
    QHash<QString, Entry> m_byFileName;  // file name without ".desktop", lower case
    qint64 m_lastCheck = -1;
};
