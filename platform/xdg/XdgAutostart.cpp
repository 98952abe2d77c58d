#include "platform/xdg/XdgAutostart.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSettings>

#include "platform/xdg/XdgBaseDirectories.h"

XdgAutostart::XdgAutostart(QString entryPath) : m_entryPath(std::move(entryPath)) {}

QString XdgAutostart::standardPath() {
    const QString base = XdgBaseDirectories::configHome();
    return base.isEmpty() ? QString() : base + QStringLiteral("/autostart/lattica.desktop");
}

AutostartStatus XdgAutostart::status() {
    QFile file(m_entryPath);
    if (!file.open(QIODevice::ReadOnly)) {
        return AutostartStatus::Disabled;
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
            return AutostartStatus::Disabled;
        }
    }
    return AutostartStatus::Enabled;
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
    QString executable = QCoreApplication::applicationFilePath();
    executable.replace(QLatin1Char('"'), QLatin1String("\\\""));
    const QByteArray entry = QStringLiteral(
                                 "[Desktop Entry]\n"
                                 "Type=Application\n"
                                 "Name=Lattica\n"
                                 "Comment=Preview displays and move windows from one display to another\n"
                                 "Exec=\"%1\"\n"
                                 "Icon=lattica\n"
                                 "Terminal=false\n"
                                 "X-GNOME-Autostart-enabled=true\n")
                                 .arg(executable)
                                 .toUtf8();
    QSaveFile file(m_entryPath);
    if (!file.open(QIODevice::WriteOnly) || file.write(entry) != entry.size() || !file.commit()) {
        *error = file.errorString();
        return false;
    }
    return true;
}

bool XdgAutostart::disable(QString* error) {
    QFile file(m_entryPath);
    if (!file.exists()) {
        return true;
    }
    if (!file.remove()) {
        *error = file.errorString();
        return false;
    }
    return true;
}
