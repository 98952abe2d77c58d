// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QImage>
#include <QMutex>
#include <QString>

// Pictures of KWin's outputs through its org.kde.KWin.ScreenShot2 interface, which writes the raw pixels
// to a pipe. KWin serves only programs named in an installed desktop file's
// X-KDE-DBUS-Restricted-Interfaces; the last refusal is kept so that the session check can say why.
class KWinScreenCapture {
public:
    explicit KWinScreenCapture(QDBusConnection bus) : m_bus(std::move(bus)) {}

    // The output's contents at full resolution; a null image when KWin refuses or fails. Any thread.
    QImage captureScreen(const QString& outputName);
    // KWin's error message for the last capture that failed; empty after one that worked.
    QString lastRefusal() const;

private:
    QDBusConnection m_bus;
    mutable QMutex m_mutex;
    QString m_lastRefusal;
};
